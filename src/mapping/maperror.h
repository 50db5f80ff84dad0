#pragma once
#include <stdexcept>
#include <string>

// The one failure of the mapping component: a misuse (unknown field, missing
// key, failed overlay, index out of range). Callers catch it at the edge of
// their own routine and show their fixed text; its message is never shown.
class MapError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};
