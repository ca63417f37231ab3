#pragma once
#include <string>

// Base of every parameter set: the typed cells of one block. The destructor takes the first virtual
// slots, then className, then reflect.
class PRSMParams {
public:
    virtual ~PRSMParams();
    virtual std::string className() const;
    virtual std::string reflect() const = 0;
};
