// A growable UTF-16 string whose positions count from 1.
#pragma once

#include <cstdint>
#include <string>

// Counts code units, not characters; text in 8 bits is in the application's encoding unless stated otherwise.
class eu16string {
  public:
    eu16string() = default;
    explicit eu16string(std::u16string units) : units_(std::move(units)) {}
    // Empty when the text cannot be decoded.
    explicit eu16string(const char* text);
    // Decoded as UTF-8.
    explicit eu16string(const unsigned char* text);
    // One character; 0 makes an empty string, a value above 0x10FFFF leaves its low 16 bits.
    explicit eu16string(std::uint32_t codePoint);
    explicit eu16string(char character);

    eu16string(const eu16string&) = default;
    eu16string(eu16string&&) = default;
    eu16string& operator=(const eu16string&) = default;
    eu16string& operator=(eu16string&&) = default;
    virtual ~eu16string() = default;

    const std::u16string& units() const { return units_; }

    // Replaces `out` by the text in the application's encoding, with "?" for what the encoding lacks.
    void GetStdString(std::string& out) const;

    // Position of the first occurrence, 0 when absent. The empty text is at 1 of every string but the empty
    // one.
    int AnsiPos(const eu16string& text) const;

    // Removes up to `count` units from position `index` on; a position outside the string removes none.
    eu16string& AnsiDelete(int index, int count);

    // Up to `count` units from position `start` on, where a start below 1 means 1.
    eu16string AnsiSubString(int start, int count) const;

    // Cuts to `length` units; never lengthens.
    void AnsiSetLength(int length);

    // The unit at a position, a space outside the string.
    char16_t AnsiCharAtIndex(int index) const;

    // The unit at a position for writing, outside the string the first one. An empty string gives its
    // terminator, which nobody may change.
    char16_t& AnsiCharAtIndex(int index);

  private:
    bool holds(int index) const;

    std::u16string units_;
};
