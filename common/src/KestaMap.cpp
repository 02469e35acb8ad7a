#include "KestaMap.h"

#include <iostream>

std::ostream& kestaStandardOutput()
{
    return std::cout;
}
