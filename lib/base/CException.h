// The exception of the library: format errors and impossible states.
#pragma once

#include <base/CString.h>
#include <base/Export.h>
#include <base/Lumbra.h>

#include <exception>
#include <memory>

namespace Ketra {

// Copies share their texts, so copying never throws.
class KETRA_QT_API CException : public Lumbra::es::base, public std::exception {
public:
    // What getName() and the others give; all are copied.
    CException(const char* className, int line, const char* file, const char* function,
               const CString& message);
    CException(const CException&);
    CException& operator=(const CException&);
    ~CException() override;

    const CString& getName() const; // "Ketra::CException"
    int getLine() const;
    const CString& getFile() const;     // source file without ending, such as "lib/qt/QTAtoms"
    const CString& getFunction() const; // qualified, such as "Ketra::QT::STTS::serialize"
    const CString& getMessage() const;
    const char* what() const noexcept override; // the message

private:
    struct Details;
    std::shared_ptr<const Details> details_;
};

} // namespace Ketra
