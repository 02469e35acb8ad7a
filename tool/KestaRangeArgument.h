#ifndef KESTA_RANGE_ARGUMENT_H
#define KESTA_RANGE_ARGUMENT_H

#include "KestaIPRange.h"

#include <memory>
#include <string>

/// Makes a range of a text. A text that may not mean what it seems to mean is explained on standard
/// error: "10.*" is 10.0.0.0 to 10.0.0.255.
///
/// Throws: a `CKestaToolError` that names the text and says what is wrong, or what to write
/// instead. The explanation and the error begin with `strPlace`, such as "ranges.txt:3: ". The
/// library's own error is traced.
std::unique_ptr<KestaIPRange> readRange(const std::string& strText,
                                        const std::string& strPlace = "");

#endif
