#include "IVarianteTkk.h"

IVarianteTkk::~IVarianteTkk() = default;
