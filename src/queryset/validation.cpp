// Placeholder until this module is written.
#include "queryset/validation.h"

bool CheckInputs() { return false; }
