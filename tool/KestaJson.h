#ifndef KESTA_JSON_H
#define KESTA_JSON_H

#include "KestaOutput.h"

#include <nlohmann/json.hpp>

/// JSON whose objects keep their members in the order of their adding.
typedef nlohmann::ordered_json CKestaJson;

/// Writes it, indented, with a newline at its end; bytes that are not UTF-8 become U+FFFD.
inline void printJson(const CKestaJson& json, CKestaOutput& output)
{
    output.write(json.dump(2, ' ', false, CKestaJson::error_handler_t::replace) + "\n");
}

#endif
