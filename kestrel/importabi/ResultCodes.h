/// 32-bit signed answers of an importer's entry point, the same for every selector.
#ifndef KESTREL_IMPORTABI_RESULT_CODES_H
#define KESTREL_IMPORTABI_RESULT_CODES_H

enum ksResult {
    ksResultServed = 0,            ///< request served
    ksResultFileUnreadable = 2,    ///< the data file could not be read, or neither file nor text is there
    ksResultUnsupported = 3,       ///< not served, or only to the extent of saying so
    ksResultOutOfMemory = 4,       ///< an allocation failed
    ksResultFailed = 5,            ///< a needed pointer is null, or anything else went wrong
    ksResultUseSavedFile = 17,     ///< settings exchange: the clip is to use the file just saved
    ksResultNoSuchColorIndex = 19, ///< colour information asked for an index other than 0
    ksResultNoInstance = 99,       ///< an importer instance could not be created
    ksResultSelector28 = 100,      ///< the fixed answer to selector 28
    ksResultSelector36 = 101,      ///< the fixed answer to selector 36
    ksResultCancelled = 300,       ///< the settings dialog was cancelled
    ksResultNoMoreEntries = 301    ///< the enumeration has no entry of that index
};

#endif
