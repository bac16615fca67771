// The typed wrappers around the generic record calls.
#include "kit/data_records.h"

namespace {

// Numbers of a key are 16 bits wide, signed or not.
std::uint16_t word(int number) {
    return static_cast<std::uint16_t>(number);
}

template <class First, class Incident>
void unpack(const EDATAKEY& key, First& first, Incident& inci) {
    first = static_cast<First>(key.cmper);
    inci = key.inci;
}

template <class First, class Second>
void unpack(const EDETAILKEY& key, First& first, Second& second, std::uint16_t& inci) {
    first = static_cast<First>(key.cmper1);
    second = static_cast<Second>(key.cmper2);
    inci = key.inci;
}

void unpack(const EENTRYKEY& key, std::uint32_t& entryNumber, std::uint16_t& inci) {
    entryNumber = key.entryNumber;
    inci = key.inci;
}

template <class Key>
bool load(std::uint32_t tag, Key key, void* record, std::uint32_t size) {
    return SX_LoadEData(tag, &key, record, &size) != 0;
}

template <class Key>
bool save(std::uint32_t tag, Key key, void* record, std::uint32_t size) {
    return SX_SaveEData(tag, &key, record, &size) != 0;
}

template <class Key>
bool remove(std::uint32_t tag, Key key) {
    return SX_DeleteEData(tag, &key) != 0;
}

// One number of the key asks for a new one; what the host made of it comes back.
template <class Key, class Number>
bool create(std::uint32_t tag, Key key, std::uint16_t Key::*place, Number& number, void* record,
            std::uint32_t size) {
    key.*place = kAppendNumber;
    const bool created = SX_CreateEData(tag, &key, record, &size) != 0;
    number = static_cast<Number>(key.*place);
    return created;
}

template <class Key, class... Numbers>
bool next(std::uint32_t tag, Key key, void* record, std::uint32_t size, Numbers&... numbers) {
    const bool found = SX_NextEData(tag, &key, record, &size) != 0;
    if (found) unpack(key, numbers...);
    return found;
}

}  // namespace

bool sx_loadother(std::uint32_t tag, std::uint16_t cmper, std::uint16_t inci, void* record,
                  std::uint32_t size) {
    return load(tag, EDATAKEY{cmper, inci}, record, size);
}

bool sx_saveother(std::uint32_t tag, std::uint16_t cmper, std::uint16_t inci, void* record,
                  std::uint32_t size) {
    return save(tag, EDATAKEY{cmper, inci}, record, size);
}

bool sx_addother(std::uint32_t tag, std::uint16_t cmper, std::uint16_t& inci, void* record,
                 std::uint32_t size) {
    return create(tag, EDATAKEY{cmper, 0}, &EDATAKEY::inci, inci, record, size);
}

bool sx_deleteother(std::uint32_t tag, std::uint16_t cmper, std::uint16_t inci) {
    return remove(tag, EDATAKEY{cmper, inci});
}

bool sx_nextother(std::uint32_t tag, std::uint16_t& cmper, std::uint16_t& inci, void* record,
                  std::uint32_t size) {
    return next(tag, EDATAKEY{cmper, inci}, record, size, cmper, inci);
}

bool sx_loadglobal(std::uint32_t tag, std::uint16_t inci, void* record, std::uint32_t size) {
    return sx_loadother(tag, kGlobalNumber, inci, record, size);
}

bool sx_saveglobal(std::uint32_t tag, std::uint16_t inci, void* record, std::uint32_t size) {
    return sx_saveother(tag, kGlobalNumber, inci, record, size);
}

bool sx_addglobal(std::uint32_t tag, std::uint16_t& inci, void* record, std::uint32_t size) {
    return sx_addother(tag, kGlobalNumber, inci, record, size);
}

bool sx_deleteglobal(std::uint32_t tag, std::uint16_t inci) {
    return sx_deleteother(tag, kGlobalNumber, inci);
}

bool sx_loaddetail(std::uint32_t tag, std::uint16_t cmper1, std::uint16_t cmper2, std::uint16_t inci,
                   void* record, std::uint32_t size) {
    return load(tag, EDETAILKEY{cmper1, cmper2, inci}, record, size);
}

bool sx_savedetail(std::uint32_t tag, std::uint16_t cmper1, std::uint16_t cmper2, std::uint16_t inci,
                   void* record, std::uint32_t size) {
    return save(tag, EDETAILKEY{cmper1, cmper2, inci}, record, size);
}

bool sx_adddetail(std::uint32_t tag, std::uint16_t cmper1, std::uint16_t cmper2, std::uint16_t& inci,
                  void* record, std::uint32_t size) {
    return create(tag, EDETAILKEY{cmper1, cmper2, 0}, &EDETAILKEY::inci, inci, record, size);
}

bool sx_deletedetail(std::uint32_t tag, std::uint16_t cmper1, std::uint16_t cmper2, std::uint16_t inci) {
    return remove(tag, EDETAILKEY{cmper1, cmper2, inci});
}

bool sx_nextdetail(std::uint32_t tag, std::uint16_t& cmper1, std::uint16_t& cmper2, std::uint16_t& inci,
                   void* record, std::uint32_t size) {
    return next(tag, EDETAILKEY{cmper1, cmper2, inci}, record, size, cmper1, cmper2, inci);
}

bool sx_loadentrydetail(std::uint32_t tag, std::uint32_t entryNumber, std::uint16_t inci, void* record,
                        std::uint32_t size) {
    return load(tag, EENTRYKEY{entryNumber, inci}, record, size);
}

bool sx_saveentrydetail(std::uint32_t tag, std::uint32_t entryNumber, std::uint16_t inci, void* record,
                        std::uint32_t size) {
    return save(tag, EENTRYKEY{entryNumber, inci}, record, size);
}

bool sx_addentrydetail(std::uint32_t tag, std::uint32_t entryNumber, std::uint16_t& inci, void* record,
                       std::uint32_t size) {
    return create(tag, EENTRYKEY{entryNumber, 0}, &EENTRYKEY::inci, inci, record, size);
}

bool sx_deleteentrydetail(std::uint32_t tag, std::uint32_t entryNumber, std::uint16_t inci) {
    return remove(tag, EENTRYKEY{entryNumber, inci});
}

bool sx_nextentrydetail(std::uint32_t tag, std::uint32_t& entryNumber, std::uint16_t& inci, void* record,
                        std::uint32_t size) {
    return next(tag, EENTRYKEY{entryNumber, inci}, record, size, entryNumber, inci);
}

#define NUMBERED_FAMILY(name, Record, tag, Number)                                                       \
    bool sx_load##name(Number number, Record* record) {                                                  \
        return load(tag, EDATAKEY{word(number), 0}, record, sizeof *record);                             \
    }                                                                                                    \
    bool sx_save##name(Number number, Record* record) {                                                  \
        return save(tag, EDATAKEY{word(number), 0}, record, sizeof *record);                             \
    }                                                                                                    \
    bool sx_add##name(Number& number, Record* record) {                                                  \
        return create(tag, EDATAKEY{word(number), 0}, &EDATAKEY::cmper, number, record, sizeof *record); \
    }                                                                                                    \
    bool sx_delete##name(Number number) {                                                                \
        return remove(tag, EDATAKEY{word(number), 0});                                                   \
    }                                                                                                    \
    bool sx_next##name(Number& number, Record* record) {                                                 \
        std::uint16_t inci = 0;                                                                          \
        return next(tag, EDATAKEY{word(number), 0}, record, sizeof *record, number, inci);               \
    }
#define OTHER_FAMILY(name, Record, tag, Number)                                                       \
    bool sx_load##name(Number number, std::uint16_t inci, Record* record) {                           \
        return load(tag, EDATAKEY{word(number), inci}, record, sizeof *record);                       \
    }                                                                                                 \
    bool sx_save##name(Number number, std::uint16_t inci, Record* record) {                           \
        return save(tag, EDATAKEY{word(number), inci}, record, sizeof *record);                       \
    }                                                                                                 \
    bool sx_add##name(Number number, std::uint16_t& inci, Record* record) {                           \
        return create(tag, EDATAKEY{word(number), 0}, &EDATAKEY::inci, inci, record, sizeof *record); \
    }                                                                                                 \
    bool sx_delete##name(Number number, std::uint16_t inci) {                                         \
        return remove(tag, EDATAKEY{word(number), inci});                                             \
    }                                                                                                 \
    bool sx_next##name(Number& number, std::uint16_t& inci, Record* record) {                         \
        return next(tag, EDATAKEY{word(number), inci}, record, sizeof *record, number, inci);         \
    }
#define PAIR_FAMILY(name, Record, tag, First, Second)                                                     \
    bool sx_load##name(First first, Second second, Record* record) {                                      \
        return load(tag, EDETAILKEY{word(first), word(second), 0}, record, sizeof *record);               \
    }                                                                                                     \
    bool sx_save##name(First first, Second second, Record* record) {                                      \
        return save(tag, EDETAILKEY{word(first), word(second), 0}, record, sizeof *record);               \
    }                                                                                                     \
    bool sx_add##name(First first, Second& second, Record* record) {                                      \
        return create(tag, EDETAILKEY{word(first), 0, 0}, &EDETAILKEY::cmper2, second, record,            \
                      sizeof *record);                                                                    \
    }                                                                                                     \
    bool sx_delete##name(First first, Second second) {                                                    \
        return remove(tag, EDETAILKEY{word(first), word(second), 0});                                     \
    }                                                                                                     \
    bool sx_next##name(First& first, Second& second, Record* record) {                                    \
        std::uint16_t inci = 0;                                                                           \
        return next(tag, EDETAILKEY{word(first), word(second), 0}, record, sizeof *record, first, second, \
                    inci);                                                                                \
    }
#define DETAIL_FAMILY(name, Record, tag, First, Second)                                                      \
    bool sx_load##name(First first, Second second, std::uint16_t inci, Record* record) {                     \
        return load(tag, EDETAILKEY{word(first), word(second), inci}, record, sizeof *record);               \
    }                                                                                                        \
    bool sx_save##name(First first, Second second, std::uint16_t inci, Record* record) {                     \
        return save(tag, EDETAILKEY{word(first), word(second), inci}, record, sizeof *record);               \
    }                                                                                                        \
    bool sx_add##name(First first, Second second, std::uint16_t& inci, Record* record) {                     \
        return create(tag, EDETAILKEY{word(first), word(second), 0}, &EDETAILKEY::inci, inci, record,        \
                      sizeof *record);                                                                       \
    }                                                                                                        \
    bool sx_delete##name(First first, Second second, std::uint16_t inci) {                                   \
        return remove(tag, EDETAILKEY{word(first), word(second), inci});                                     \
    }                                                                                                        \
    bool sx_next##name(First& first, Second& second, std::uint16_t& inci, Record* record) {                  \
        return next(tag, EDETAILKEY{word(first), word(second), inci}, record, sizeof *record, first, second, \
                    inci);                                                                                   \
    }
#define ENTRY_FAMILY(name, Record, tag)                                                                \
    bool sx_load##name(std::uint32_t entryNumber, std::uint16_t inci, Record* record) {                \
        return load(tag, EENTRYKEY{entryNumber, inci}, record, sizeof *record);                        \
    }                                                                                                  \
    bool sx_save##name(std::uint32_t entryNumber, std::uint16_t inci, Record* record) {                \
        return save(tag, EENTRYKEY{entryNumber, inci}, record, sizeof *record);                        \
    }                                                                                                  \
    bool sx_add##name(std::uint32_t entryNumber, std::uint16_t& inci, Record* record) {                \
        return create(tag, EENTRYKEY{entryNumber, 0}, &EENTRYKEY::inci, inci, record, sizeof *record); \
    }                                                                                                  \
    bool sx_delete##name(std::uint32_t entryNumber, std::uint16_t inci) {                              \
        return remove(tag, EENTRYKEY{entryNumber, inci});                                              \
    }                                                                                                  \
    bool sx_next##name(std::uint32_t& entryNumber, std::uint16_t& inci, Record* record) {              \
        return next(tag, EENTRYKEY{entryNumber, inci}, record, sizeof *record, entryNumber, inci);     \
    }
#include "kit/record_families.def"

std::uint32_t ot_smartshape = kSmartShapeTag;
std::uint32_t sizeofsmartshape = sizeof(EDTOldSmartShape);

void TurnOnEDTSmartShapeCompatibilityForScorix2000_2003() {
    ot_smartshape = kOldSmartShapeTag;
    sizeofsmartshape = kOldSmartShapeSize;
}

bool sx_loadsmartshape(std::uint16_t number, EDTOldSmartShape* record) {
    return sx_loadother(ot_smartshape, number, 0, record, sizeofsmartshape);
}

bool sx_savesmartshape(std::uint16_t number, EDTOldSmartShape* record) {
    return sx_saveother(ot_smartshape, number, 0, record, sizeofsmartshape);
}

bool sx_createsmartshape(std::uint16_t& number, EDTOldSmartShape* record) {
    return create(ot_smartshape, EDATAKEY{0, 0}, &EDATAKEY::cmper, number, record, sizeofsmartshape);
}

bool sx_nextsmartshape(std::uint16_t& number, EDTOldSmartShape* record) {
    std::uint16_t inci = 0;
    return sx_nextother(ot_smartshape, number, inci, record, sizeofsmartshape);
}
