// Exceptions of the report-message machinery and of text conversion. They mark
// misuse or a broken message table; ordinary failures travel as bool results
// with a VReportMessageParams.
#pragma once

#include <exception>

// The message code is in none of the tables consulted.
class MessageNotFound : public std::exception {
public:
    const char* what() const noexcept override { return "MessageNotFound"; }
};

// The insertion arguments do not fit the message text.
class InvalidParameter : public std::exception {
public:
    const char* what() const noexcept override { return "InvalidParameter"; }
};

// A text conversion met a character sequence it cannot translate.
class IllegalSequence : public std::exception {
public:
    const char* what() const noexcept override { return "IllegalSequence"; }
};
