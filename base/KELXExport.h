#pragma once

/// @file
/// The marks of exported names.

/// Marks what `libKELXBase` exports; everything else in that library stays hidden.
#define KELXBASE_API __attribute__((visibility("default")))

/// Marks what `libKELXStStorage` exports; everything else in that library stays hidden.
#define KELXSTSTORAGE_API __attribute__((visibility("default")))
