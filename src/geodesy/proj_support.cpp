#include "geodesy/proj_support.h"

#include "base/format.h"
#include "base/translation.h"
#include "geodesy/messages.h"

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

Status createOperation(const std::string &definition, ContextPtr &ctx, PjPtr &pj) {
    ContextPtr context = newContext();
    PjPtr operation(proj_create(context.get(), definition.c_str()));
    if (!operation)
        return Status::failure(StatusCode::InvalidInput, format(tr(messages::kInvalidParameters),
                                                                lastError(context.get()).c_str()));
    ctx = std::move(context);
    pj = std::move(operation);
    return Status::success();
}

} // namespace tramline::geodesy::detail
