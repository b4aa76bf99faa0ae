/// 32-bit signed answers of an importer's entry point.
///
/// The meaning of a code is the same for every selector. Which codes a selector may answer, and what each
/// leaves in the record, stands before its record in Records.h, or beside its number in Selectors.h. The
/// host treats any other answer as `ksResultFailed`.
#ifndef KESTREL_IMPORTABI_RESULT_CODES_H
#define KESTREL_IMPORTABI_RESULT_CODES_H

enum ksResult {
    ksResultServed = 0,         ///< the request was served
    ksResultFileUnreadable = 2, ///< the clip's file cannot be read, or there is neither file nor settings text
    ksResultUnsupported = 3,    ///< the importer does not serve this request
    ksResultOutOfMemory = 4,    ///< an allocation failed
    ksResultFailed = 5,        ///< a record, instance or buffer that is needed is null, or anything else failed
    ksResultUseSavedFile = 17, ///< selector 38: the clip is to use the file that the person just saved
    ksResultNoSuchColorIndex = 19, ///< selector 73: an index other than 0
    ksResultNoInstance = 99,       ///< selectors 37, 39 and 81: no instance could be made
    ksResultSelector28 = 100,      ///< the answer to selector 28, which has no other
    ksResultSelector36 = 101,      ///< the answer to selector 36, which has no other
    ksResultCancelled = 300,       ///< selector 38: the person cancelled the dialog
    ksResultNoMoreEntries = 301    ///< selectors 14 and 27: no entry has this index
};

#endif
