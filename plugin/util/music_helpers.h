// Arithmetic on note values, and a check of pointers.
//
// Durations are in host duration units, in which every plain note value is a power of two.
#pragma once

// Integer base-2 logarithm of a number of at least 1.
int IntLog2(int x);

// The undotted note value: the largest power of two that is not above a duration, 0 below 1.
int DotsBase(int duration);

// Dots of a duration of at least 1.
int CountDots(int duration);

// A duration of at least 1 as a fraction whose denominator is a power of two, at most 2048. Returns the
// numerator.
int CalcNumDen(int duration, int& numerator, int& denominator);

// Whether a pointer may be one: not null, and its low 32 bits not one byte four times, as memory is filled
// with by debuggers and allocators.
bool ValidPointer(const void* pointer);
