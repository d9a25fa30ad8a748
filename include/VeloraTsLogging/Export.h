#pragma once

// The build of the library defines VELORA_TS_LOGGING_BUILD. A host defines nothing.
// No other public header depends on the compiler or the system.

/// Marks what the library exports. Everything else in the library is hidden.
#if defined(_WIN32) && defined(VELORA_TS_LOGGING_BUILD)
#define VELORA_TS_LOGGING_API __declspec(dllexport)
#elif defined(_WIN32)
#define VELORA_TS_LOGGING_API __declspec(dllimport)
#else
#define VELORA_TS_LOGGING_API __attribute__((visibility("default")))
#endif

/// Declares two virtual overloads of one name, each with its semicolon. With every compiler `first` gets the slot
/// before `second`. Most compilers use the order of the declarations. Microsoft's compilers put all overloads that a
/// class introduces under one name at the place of the first, in reverse order. Nest the macro for four overloads:
/// VELORA_IN_SLOT_ORDER(VELORA_IN_SLOT_ORDER(a; , b;), VELORA_IN_SLOT_ORDER(c; , d;)). An argument must not contain a
/// comma outside parentheses.
#if defined(_MSC_VER)
#define VELORA_IN_SLOT_ORDER(first, second) second first
#else
#define VELORA_IN_SLOT_ORDER(first, second) first second
#endif
