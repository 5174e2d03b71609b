// Internal: small owners for PROJ's C objects and the shared connection to
// PROJ's database. Not part of the module's interface (PROJ stays a private
// dependency).
#pragma once

#include "geodesy/status.h"

#include <proj.h>

#include <memory>
#include <mutex>
#include <string>

namespace tramline::geodesy::detail {

struct ContextDeleter {
    void operator()(PJ_CONTEXT *ctx) const { proj_context_destroy(ctx); }
};
struct PjDeleter {
    void operator()(PJ *pj) const { proj_destroy(pj); }
};
struct ObjListDeleter {
    void operator()(PJ_OBJ_LIST *list) const { proj_list_destroy(list); }
};

using ContextPtr = std::unique_ptr<PJ_CONTEXT, ContextDeleter>;
using PjPtr = std::unique_ptr<PJ, PjDeleter>;
using ObjListPtr = std::unique_ptr<PJ_OBJ_LIST, ObjListDeleter>;

/// A fresh context that logs nothing (failures reach the user through our
/// own messages, not PROJ's stderr lines).
ContextPtr newContext();

/// PROJ's text for the context's last error, or "unknown error".
std::string lastError(PJ_CONTEXT *ctx);

/// A fresh context and the operation of a PROJ definition string in it.
/// Fails with InvalidInput and the parameters message when PROJ refuses
/// the definition; `ctx` and `pj` are then left as they were.
Status createOperation(const std::string &definition, ContextPtr &ctx, PjPtr &pj);

/// The context used for database queries, with the lock that guards it:
/// a PROJ context must not be used by two threads at once.
struct DatabaseAccess {
    std::unique_lock<std::mutex> lock;
    PJ_CONTEXT *ctx;
};
DatabaseAccess database();

} // namespace tramline::geodesy::detail
