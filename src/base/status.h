// How core operations report failure across a module's interface: a
// category for the caller's decisions (exit codes, retries, whether to go
// on), the user's message already translated, and for readers of files the
// 1-based line where the trouble is (0 when no line applies). Nothing in
// the core throws across a module's interface.
#pragma once

#include <cstddef>
#include <string>
#include <utility>

namespace tramline {

enum class StatusCode {
    Ok = 0,
    NotSupported, ///< a format, projection type or zone with no formulas here
    InvalidInput, ///< a parameter or coordinate the operation cannot take
    OutOfRange,   ///< a point outside a grid, a zone or a domain
    NotFound,     ///< a file, model, point or zone that does not exist
    Io,           ///< a file that cannot be read or written
    Format,       ///< content that is not what its format requires
    Download,     ///< a file that could not be fetched
    Cancelled,    ///< the user stopped the operation
};

struct Status {
    StatusCode code = StatusCode::Ok;
    std::string message;        ///< the user's text, empty when ok
    std::size_t lineNumber = 0; ///< 1-based line of the input, 0 when none

    bool ok() const { return code == StatusCode::Ok; }
    explicit operator bool() const { return ok(); }

    static Status success() { return {}; }
    static Status failure(StatusCode code, std::string message, std::size_t lineNumber = 0) {
        return {code, std::move(message), lineNumber};
    }
};

} // namespace tramline
