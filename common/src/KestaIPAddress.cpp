#include "KestaIPAddress.h"

KestaIPAddress::KestaIPAddress() : m_binIPAddress() {}

KestaIPAddress::~KestaIPAddress() = default;
