#include <prsm/framework/PRSMException.h>

PRSMException::PRSMException(char const* message, char const* function)
    : m_message(std::string("PRS Exception: ") + message + " [ in function: " + function + " ]") {}

char const* PRSMException::what() const {
    return m_message.c_str();
}
