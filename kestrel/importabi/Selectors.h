/// Request numbers of an importer's entry point. The numbers that this system gives no work stay
/// without a name; an importer answers `ksResultUnsupported` to every number above `ksSelectorLast`.
#ifndef KESTREL_IMPORTABI_SELECTORS_H
#define KESTREL_IMPORTABI_SELECTORS_H

enum ksSelector {
    ksSelectorStartUp = 0,           ///< param1: ksStartUpRec
    ksSelectorShutDown = 1,          ///< no records
    ksSelectorCloseFile = 8,         ///< param2: the instance, which stays alive
    ksSelectorDeleteInstance = 9,    ///< param2: the instance, gone afterwards
    ksSelectorFileType = 14,         ///< param1: index; param2: ksFileTypeRec
    ksSelectorAudio = 25,            ///< param2: ksAudioRec
    ksSelectorIndexed27 = 27,        ///< param1: index; param2: ksIndexedRec
    ksSelectorClipDescription = 37,  ///< param1: ksFileAccessRec; param2: ksFileInfoRec
    ksSelectorSettingsExchange = 38, ///< param1: ksFileAccessRec; param2: ksSettingsExchangeRec
    ksSelectorOpenFile = 39,         ///< param2: ksOpenRec
    ksSelectorFrameSize = 45,        ///< param1: ksFrameSizeRec
    ksSelectorFrame = 47,            ///< param2: ksFrameRec
    ksSelectorColorInformation = 73, ///< param1: index; param2: ksColorRec
    ksSelectorCreateInstance = 81,   ///< param2: ksFileInfoRec, only its instance slot
    ksSelectorLast = 86
};

#endif
