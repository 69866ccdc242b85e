// The compositor's conversions between pixel types: for each pair of source
// and destination types, the working type that the merge runs in and the
// row converters that bring rows into it and back.
#pragma once

#include <cstdint>

#include "imaging/row_convert.h"

namespace fancy {

struct ConversionCell {
  RowConverter direct;      // source type straight to destination type; null
                            // for the same type
  RowConverter readSource;  // source to working form; null when it is already
  RowConverter readDest;    // destination to working form; null when merged
                            // in place
  RowConverter writeDest;   // working form back to the destination
  int32_t destBits;
  int32_t workingBits;
  int32_t workingType;
};

// The place of a type in the table's order 1, 5 and 99, 3, 6, 10, 11, 13,
// 12, 14; -1 for others.
int32_t ConversionIndex(int32_t type);

// The cell of a pair, null when either type is not in the table.
const ConversionCell* FindConversion(int32_t sourceType, int32_t destType);

}  // namespace fancy
