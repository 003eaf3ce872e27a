#pragma once

/// What a shared library offers to others. Everything is hidden unless it is marked: classes and functions
/// that are defined in a source file, and polymorphic classes, whose type must be one and the same
/// everywhere. What is defined in a header needs no mark.
#define NIMBUSCOPE_EXPORT __attribute__((visibility("default")))
