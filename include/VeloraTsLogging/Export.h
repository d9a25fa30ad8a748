#pragma once

// Who defines what: the build of the library defines VELORA_TS_LOGGING_BUILD; a host defines nothing.
// This is the only header here that knows a compiler or a system.

/// Marks what the library exports; everything else in it is hidden.
#if defined(_WIN32) && defined(VELORA_TS_LOGGING_BUILD)
#define VELORA_TS_LOGGING_API __declspec(dllexport)
#elif defined(_WIN32)
#define VELORA_TS_LOGGING_API __declspec(dllimport)
#else
#define VELORA_TS_LOGGING_API __attribute__((visibility("default")))
#endif

/// Declares two virtual overloads of one name, each with its semicolon, so that `first` takes the slot before `second`
/// with every compiler. Most tables follow the declarations; Microsoft's compilers put all overloads that a class
/// introduces under one name where the first of them stands, in reverse of their declaration. Nested for four:
/// VELORA_IN_SLOT_ORDER(VELORA_IN_SLOT_ORDER(a; , b;), VELORA_IN_SLOT_ORDER(c; , d;)). An argument holds no comma
/// outside parentheses.
#if defined(_MSC_VER)
#define VELORA_IN_SLOT_ORDER(first, second) second first
#else
#define VELORA_IN_SLOT_ORDER(first, second) first second
#endif
