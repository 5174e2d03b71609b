#include "geodesy/proj_support.h"

namespace tramline::geodesy::detail {

ContextPtr newContext() {
    ContextPtr ctx(proj_context_create());
    if (ctx)
        proj_log_level(ctx.get(), PJ_LOG_NONE);
    return ctx;
}

std::string lastError(PJ_CONTEXT *ctx) {
    const int code = proj_context_errno(ctx);
    const char *text = code ? proj_context_errno_string(ctx, code) : nullptr;
    return text ? text : "unknown error";
}

DatabaseAccess database() {
    static std::mutex mutex;
    static ContextPtr ctx = newContext();
    return {std::unique_lock<std::mutex>(mutex), ctx.get()};
}

} // namespace tramline::geodesy::detail
