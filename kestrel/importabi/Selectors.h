/// Request numbers of an importer's entry point.
///
/// The records in Records.h say what each request needs, gives and answers; requests without a record are
/// described here. The host of this system sends selectors 0, 1, 9, 14, 25, 37, 38, 39, 47 and 73. Other
/// hosts send more: an importer answers `ksResultUnsupported` to every number that it does not serve, those
/// above `ksSelectorLast` and negative ones included.
#ifndef KESTREL_IMPORTABI_SELECTORS_H
#define KESTREL_IMPORTABI_SELECTORS_H

enum ksSelector {
    /// Starts the importer. param1: `ksStartUpRec`.
    ksSelectorStartUp = 0,

    /// The last request, after every instance is deleted. param1 and param2 are null. The host may start
    /// the importer again afterwards.
    /// - `ksResultServed`: done. The host unloads the library whatever the answer is.
    /// [serialised], together with selector 0
    ksSelectorShutDown = 1,

    /// The host does not need the clip's file for now. param2: the instance, which stays alive and may be
    /// asked again. An importer that keeps files open closes them here.
    /// - `ksResultServed`: done, or there was nothing to do.
    /// [any-thread]
    ksSelectorCloseFile = 8,

    /// Deletes an instance. param2: the instance, which the host does not use again.
    /// - `ksResultServed`: the instance is gone.
    /// - `ksResultUnsupported`: param2 is null.
    /// [any-thread]
    ksSelectorDeleteInstance = 9,

    /// Describes a file type. param1: an index from 0 on; param2: `ksFileTypeRec`.
    ksSelectorFileType = 14,

    /// Renders sound. param2: `ksAudioRec`.
    ksSelectorAudio = 25,

    /// param1: an index; param2: `ksIndexedRec`.
    ksSelectorIndexed27 = 27,

    /// Describes a clip. param1: `ksFileAccessRec`; param2: `ksFileInfoRec`.
    ksSelectorClipDescription = 37,

    /// Gives a clip's settings as text, after a dialog where one is due. param1: `ksFileAccessRec`; param2:
    /// `ksSettingsExchangeRec`.
    ksSelectorSettingsExchange = 38,

    /// Opens a clip's file. param2: `ksOpenRec`.
    ksSelectorOpenFile = 39,

    /// Gives the size of a clip's frames. param1: `ksFrameSizeRec`.
    ksSelectorFrameSize = 45,

    /// Renders a frame. param2: `ksFrameRec`.
    ksSelectorFrame = 47,

    /// Gives a clip's colour codes. param1: an index; param2: `ksColorRec`.
    ksSelectorColorInformation = 73,

    /// Makes an instance with default settings. param2: `ksFileInfoRec`, of which only the instance slot is
    /// used.
    /// - `ksResultUnsupported`: the slot holds the new instance, or held one before and keeps it. (0 is
    ///   never answered.)
    /// - `ksResultNoInstance`: no instance could be made; the slot is null.
    /// - `ksResultOutOfMemory`, `ksResultFailed` (also for a null record): the slot is as it was.
    /// [any-thread]
    ksSelectorCreateInstance = 81,

    ksSelectorLast = 86
};

#endif
