// The class numbers of arrays and the two small enums that go with them. Everything that
// looks at an array's class speaks in these numbers; ids above kaOBJECT_CLASS are classes of
// the class system, handed out at run time.
#pragma once

#include <cstdint>

// The class of an array. Unscoped on purpose: the enumerators are used bare everywhere, and ids
// of class-system classes (above kaOBJECT_CLASS) are made by casting their number.
enum kaClassID : std::int32_t {
    kaUNKNOWN_CLASS = 0,
    kaCELL_CLASS = 1,
    kaSTRUCT_CLASS = 2,
    kaLOGICAL_CLASS = 3,
    kaCHAR_CLASS = 4,
    kaVOID_CLASS = 5,
    kaDOUBLE_CLASS = 6,
    kaSINGLE_CLASS = 7,
    kaINT8_CLASS = 8,
    kaUINT8_CLASS = 9,
    kaINT16_CLASS = 10,
    kaUINT16_CLASS = 11,
    kaINT32_CLASS = 12,
    kaUINT32_CLASS = 13,
    kaINT64_CLASS = 14,
    kaUINT64_CLASS = 15,
    kaFUNCTION_CLASS = 16,
    kaOPAQUE_CLASS = 17,
    kaOBJECT_CLASS = 18,
};

// Whether an array holds an imaginary part beside the real one.
enum kaComplexity : std::int32_t {
    kaREAL = 0,
    kaCOMPLEX = 1,
};

// The kind of a typed array view. Its values are the class numbers of the matching kaClassID,
// so that a kaArrayType can be stored wherever a kaClassID goes.
enum kaArrayType : std::int32_t {
    kaUNKNOWN_ARRAY = kaUNKNOWN_CLASS,
    kaCELL_ARRAY = kaCELL_CLASS,
    kaSTRUCT_ARRAY = kaSTRUCT_CLASS,
    kaLOGICAL_ARRAY = kaLOGICAL_CLASS,
    kaCHAR_ARRAY = kaCHAR_CLASS,
    kaDOUBLE_ARRAY = kaDOUBLE_CLASS,
    kaSINGLE_ARRAY = kaSINGLE_CLASS,
    kaINT8_ARRAY = kaINT8_CLASS,
    kaUINT8_ARRAY = kaUINT8_CLASS,
    kaINT16_ARRAY = kaINT16_CLASS,
    kaUINT16_ARRAY = kaUINT16_CLASS,
    kaINT32_ARRAY = kaINT32_CLASS,
    kaUINT32_ARRAY = kaUINT32_CLASS,
    kaINT64_ARRAY = kaINT64_CLASS,
    kaUINT64_ARRAY = kaUINT64_CLASS,
    kaFUNCTION_ARRAY = kaFUNCTION_CLASS,
    kaOPAQUE_ARRAY = kaOPAQUE_CLASS,
    kaOBJECT_ARRAY = kaOBJECT_CLASS,
};
