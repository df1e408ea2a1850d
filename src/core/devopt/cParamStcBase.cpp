#include "devopt/cParamStcBase.h"

#include "host/KCFormat.h"

std::string cParamStcBase::elementKey(uint32_t element) const
{
    return KCFormat::format(keyFormat, {element});
}
