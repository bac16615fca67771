// The C string functions for terminated arrays of UTF-16 code units.
//
// Each behaves like its 8-bit namesake except where it says otherwise. Lengths count units, not characters.
#pragma once

#include <cstddef>

std::size_t sx_strlen(const char16_t* text);

// Null when absent; searching for 0 finds the terminator.
const char16_t* sx_strchr(const char16_t* text, char16_t unit);

// Order of the units as unsigned numbers: exactly -1, 0 or 1.
int sx_strcmp(const char16_t* left, const char16_t* right);
int sx_strncmp(const char16_t* left, const char16_t* right, std::size_t count);

const char16_t* sx_strstr(const char16_t* haystack, const char16_t* needle);

// Fills up with zeros after a short source; leaves no terminator after a source of `count` units or more.
char16_t* sx_strncpy(char16_t* target, const char16_t* source, std::size_t count);

// Returns the last unit copied, which is always the terminator 0, not the target.
char16_t sx_strcpy(char16_t* target, const char16_t* source);

// These two take the target's capacity and do not heed it: the caller makes sure that the text fits.
char16_t* sx_strcpy(char16_t* target, std::size_t capacity, const char16_t* source);
char16_t* sx_strcat(char16_t* target, std::size_t capacity, const char16_t* source);

// Formats by the rules of the platform's string objects, so %@ takes one. Cuts the text to capacity - 1
// units, terminates it and returns the units written, without the terminator.
int sx_sprintf(char16_t* target, std::size_t capacity, const char16_t* format, ...);
