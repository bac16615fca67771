// Texts and arrays kept in data records of a number and an incident.
//
// 8-bit texts and arrays lie in runs of 12-byte records with incidents counting up, a UTF-16 text whole in
// one record, terminator included. Loading gives null where it fails.
#pragma once

#include <cstdint>
#include <memory>

#include "contract/data_records.h"

// Replaces the run that starts at the key by `count` elements. 1, or 0 when the host does not take a record;
// a run that would need more incidents than there are is refused before anything is deleted.
short VeltraOtArray_Save(std::uint32_t tag, const EDATAKEY* key, std::uint32_t count,
                         std::uint32_t elementSize, const void* data);

// The text goes up to the first zero byte or the end of the run, so it is empty where there is no record.
bool sx_loadotherstring(std::uint32_t tag, std::uint16_t number, std::uint16_t incident,
                        std::unique_ptr<char[]>& text);
// Stores the text without its terminator.
bool sx_saveotherstring(std::uint32_t tag, std::uint16_t number, std::uint16_t incident, const char* text);

bool sx_loadotherstring_UTF16(std::uint32_t tag, std::uint16_t number, std::uint16_t incident,
                              std::unique_ptr<char16_t[]>& text);
bool sx_saveotherstring_UTF16(std::uint32_t tag, std::uint16_t number, std::uint16_t incident,
                              const char16_t* text);

// Raw texts, to which text blocks refer by number: UTF-16 texts, one to each number. `add` has the host
// choose the number; `next` moves it on to the text after it in the host's order and loads that.
bool sx_loadrawtext(std::uint16_t number, std::unique_ptr<char16_t[]>& text);
bool sx_saverawtext(std::uint16_t number, const char16_t* text);
bool sx_addrawtext(std::uint16_t& number, const char16_t* text);
bool sx_deleterawtext(std::uint16_t number);
bool sx_nextrawtext(std::uint16_t& number, std::unique_ptr<char16_t[]>& text);
