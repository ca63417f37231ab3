#pragma once
#include <string>

// The library's one exception type. It stands outside the standard exception hierarchy on purpose:
// hosts catch it by name, and its layout (a vtable for what(), then the message) is part of the ABI.
class PRSMException {
public:
    PRSMException(char const* message, char const* function);
    virtual char const* what() const;

private:
    std::string m_message;
};
