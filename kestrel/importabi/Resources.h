/// The three resources that every importer carries in its file, made by one line:
///
///     #include <kestrel/importabi/Resources.h>
///     KS_IMPORTER_RESOURCES("$$$/Example/Flat/Name=Flat Color", "EXAMPLE Flat Color")
///
/// Put it at file scope of one source file, C or C++. It needs a compiler with GNU attributes, a
/// little-endian processor, and a platform whose libraries are ELF files.
#ifndef KESTREL_IMPORTABI_RESOURCES_H
#define KESTREL_IMPORTABI_RESOURCES_H

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

/// Defines the property list and the two kind resources, each the whole content of its section.
///
/// @param nameKey    Literal of at most 255 bytes of UTF-8: a localisation key, "=", and the text that
///                   people see where the key has no translation.
/// @param matchName  Literal of at most 255 bytes of UTF-8: the plug-in's name for programs, the same in
///                   every language and version. Begin it with a name of your own, so that it differs from
///                   other plug-ins' names.
///
/// `PluginDataEntryFunction` must tell the host the same two texts (see Entries.h).
#define KS_IMPORTER_RESOURCES(nameKey, matchName)                                                              \
    static_assert(sizeof(nameKey) <= 256, "a property list counts a text's bytes in one byte");                \
    static_assert(sizeof(matchName) <= 256, "a property list counts a text's bytes in one byte");              \
    KS_RESOURCE_SECTION(".ksres.PIPL.16000")                                                                   \
    static const struct __attribute__((packed)) {                                                              \
        ksPropertyListHeader header;                                                                           \
        ksProperty4 kind;                                                                                      \
        KS_TEXT_PROPERTY(nameKey) name;                                                                        \
        KS_TEXT_PROPERTY(matchName) match;                                                                     \
        KS_TEXT_PROPERTY("Importer") category;                                                                 \
        ksEntryNameProperty entryX86;                                                                          \
        ksEntryNameProperty entryX64;                                                                          \
        ksProperty4 interfaceVersion;                                                                          \
        ksProperty4 supportVersion;                                                                            \
        ksProperty4 pluginVersion;                                                                             \
    } ksPropertyListResource = {                                                                               \
        {1, 0, 9},                                                                                             \
        {KS_PROPERTY_HEAD('k', 'i', 'n', 'd', 4), {'T', 'P', 'M', 'I'}, {0}},                                  \
        KS_TEXT_VALUE('n', 'a', 'm', 'e', nameKey),                                                            \
        KS_TEXT_VALUE('e', 'M', 'N', 'A', matchName),                                                          \
        KS_TEXT_VALUE('c', 'a', 't', 'g', "Importer"),                                                         \
        {KS_PROPERTY_HEAD('w', 'x', '8', '6', 8), "xFilter"},                                                  \
        {KS_PROPERTY_HEAD('8', '6', '6', '4', 8), "xFilter"},                                                  \
        {KS_PROPERTY_HEAD('e', 'P', 'V', 'R', 4), {2, 0, 1, 0}, {0}},                                          \
        {KS_PROPERTY_HEAD('e', 'S', 'V', 'R', 4), {3, 0, 0, 0}, {0}},                                          \
        {KS_PROPERTY_HEAD('e', 'V', 'E', 'R', 4), {0, 0, 0x30, 0}, {0}},                                       \
    };                                                                                                         \
    KS_RESOURCE_SECTION(".ksres.IMPT.1000")                                                                    \
    static const uint8_t ksImporterKindResource[6] = {0, 0, 'x', 'i', 'q', 'p'};                               \
    KS_RESOURCE_SECTION(".ksres.TYPE.1000")                                                                    \
    static const uint8_t ksPluginTypeResource[6] = {0, 0, 'T', 'P', 'M', 'I'}

/// Puts a constant into a section of its own. `used` and `retain` keep compilers and linkers from dropping
/// it, because no code refers to a resource. Clang's address sanitizer would add bytes of its own behind the
/// constant.
#if defined(__has_attribute) && __has_attribute(retain)
#define KS_RETAINED used, retain
#else
#define KS_RETAINED used
#endif
#ifdef __clang__
#define KS_RESOURCE_SECTION(name) __attribute__((section(name), KS_RETAINED, no_sanitize("address")))
#else
#define KS_RESOURCE_SECTION(name) __attribute__((section(name), KS_RETAINED))
#endif

// What follows is the layout of a property list, for the macro above.

/// The bytes that a property's data takes: the data, at least one zero, zeros up to a multiple of four.
#define KS_PADDED_SIZE(dataSize) (((dataSize) + 1 + 3) / 4 * 4)

typedef struct __attribute__((packed)) ksPropertyListHeader {
    uint16_t version; ///< 1
    uint32_t zero;
    uint32_t propertyCount;
} ksPropertyListHeader;
static_assert(offsetof(ksPropertyListHeader, zero) == 2, "property list format");
static_assert(offsetof(ksPropertyListHeader, propertyCount) == 6, "property list format");
static_assert(sizeof(ksPropertyListHeader) == 10, "property list format");

/// Comes before each property's data. Four-character codes are stored with their bytes reversed.
typedef struct __attribute__((packed)) ksPropertyHead {
    uint8_t vendor[4]; ///< 5QRN, reversed
    uint8_t key[4];    ///< reversed
    uint32_t id;       ///< 0
    uint32_t length;   ///< bytes of the padded data
} ksPropertyHead;
static_assert(offsetof(ksPropertyHead, key) == 4, "property list format");
static_assert(offsetof(ksPropertyHead, id) == 8, "property list format");
static_assert(offsetof(ksPropertyHead, length) == 12, "property list format");
static_assert(sizeof(ksPropertyHead) == 16, "property list format");

/// A property of four bytes.
typedef struct __attribute__((packed)) ksProperty4 {
    ksPropertyHead head;
    uint8_t data[4];
    uint8_t padding[4];
} ksProperty4;
static_assert(sizeof(ksProperty4) == sizeof(ksPropertyHead) + KS_PADDED_SIZE(4), "property list format");

/// The name of an entry point, which no host uses: it finds `xImportEntry` by that name.
typedef struct __attribute__((packed)) ksEntryNameProperty {
    ksPropertyHead head;
    char data[KS_PADDED_SIZE(sizeof "xFilter")];
} ksEntryNameProperty;
static_assert(sizeof(ksEntryNameProperty) == sizeof(ksPropertyHead) + 12, "property list format");

#define KS_PROPERTY_HEAD(a, b, c, d, dataSize)                                                                 \
    {                                                                                                          \
        {'N', 'R', 'Q', '5'}, {d, c, b, a}, 0, KS_PADDED_SIZE(dataSize)                                        \
    }

/// A text behind its length in one byte. `sizeof` counts the literal's NUL, which stands for that byte.
#define KS_TEXT_PROPERTY(literal)                                                                              \
    struct __attribute__((packed)) {                                                                           \
        ksPropertyHead head;                                                                                   \
        uint8_t length;                                                                                        \
        char text[KS_PADDED_SIZE(sizeof(literal)) - 1];                                                        \
    }
#define KS_TEXT_VALUE(a, b, c, d, literal)                                                                     \
    {                                                                                                          \
        KS_PROPERTY_HEAD(a, b, c, d, sizeof(literal)), sizeof(literal) - 1, literal                            \
    }

#endif
