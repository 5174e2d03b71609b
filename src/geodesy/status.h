// How geodesy operations report failure: a category for the caller's
// decisions (exit codes, retries) and the user's message, already
// translated. Nothing here throws across the module's interface.
#pragma once

#include <string>

namespace tramline::geodesy {

enum class StatusCode {
    Ok = 0,
    NotSupported, ///< the projection type or zone has no formulas here
    InvalidInput, ///< a parameter or coordinate the formulas cannot take
    OutOfRange,   ///< a point outside a grid, a zone or the projection's domain
    NotFound,     ///< a file, model or zone that does not exist
    Io,           ///< a file that cannot be read or written
    Format,       ///< a file whose content is not what its format requires
    Download,     ///< a grid that could not be fetched
};

struct Status {
    StatusCode code = StatusCode::Ok;
    std::string message; ///< the user's text, empty when ok

    bool ok() const { return code == StatusCode::Ok; }
    explicit operator bool() const { return ok(); }

    static Status success() { return {}; }
    static Status failure(StatusCode code, std::string message) { return {code, std::move(message)}; }
};

} // namespace tramline::geodesy
