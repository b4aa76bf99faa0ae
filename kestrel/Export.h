/// Marks what the host's libraries show: KESTREL_API is libkestrel's, KESTRELUI_API libkestrelui's,
/// KESTRELHOST_API libkestrelhost's. All else stays inside the library that defines it.
///
/// A library's own build defines the macro that ends in _BUILD, because some platforms mark what a library
/// gives differently from what a user takes.
#pragma once

#ifdef _WIN32
#define KESTREL_EXPORT __declspec(dllexport)
#define KESTREL_IMPORT __declspec(dllimport)
#else
#define KESTREL_EXPORT __attribute__((visibility("default")))
#define KESTREL_IMPORT __attribute__((visibility("default")))
#endif

#ifdef KESTREL_BUILD
#define KESTREL_API KESTREL_EXPORT
#else
#define KESTREL_API KESTREL_IMPORT
#endif

#ifdef KESTRELUI_BUILD
#define KESTRELUI_API KESTREL_EXPORT
#else
#define KESTRELUI_API KESTREL_IMPORT
#endif

#ifdef KESTRELHOST_BUILD
#define KESTRELHOST_API KESTREL_EXPORT
#else
#define KESTRELHOST_API KESTREL_IMPORT
#endif
