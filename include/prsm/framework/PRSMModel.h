#pragma once
#include <string>

// Base of every block model. Models are stateless singletons that are never deleted through this
// base, so it declares no virtual destructor: className is its only virtual slot.
class PRSMModel {
public:
    virtual std::string className() const = 0;
};
