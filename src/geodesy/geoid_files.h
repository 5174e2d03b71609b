// Making sure a geoid grid file is present before it is opened: the file
// in the data folder, else a copy from the "geoids" folder beneath it,
// else a download from the update server.
#pragma once

#include "geodesy/status.h"

#include <filesystem>
#include <string>

namespace tramline::geodesy {

/// The update server's base address; grids are under its "GeoidGrids/"
/// path. Deployments point it at their own server (the command line's
/// --server, the program's settings).
inline constexpr const char *kDefaultGeoidServer = "https://updates.halvren.com/tramline/";

struct GeoidFolders {
    /// The program's data folder, where grids are looked for and kept.
    std::filesystem::path dataFolder;
    /// The update server's base address ("http://host/path/").
    std::string serverBase = kDefaultGeoidServer;
    /// A download that has not finished after this many seconds is given
    /// up (the server may accept the connection and never answer).
    long downloadTimeoutSeconds = 120;
};

/// The URL of a grid file: the server's base, "GeoidGrids/" and the file
/// name in lower case.
std::string geoidGridUrl(const std::string &serverBase, const std::string &fileName);

/// Fetches `url` into `target`, written whole or not at all. Returns 1 on
/// success; otherwise 0 and `resultCode` is the HTTP status for an answer
/// that is not a success (404) or libcurl's error code for a transfer that
/// failed (7: no connection, 28: timed out).
int downloadFile(const std::string &url, const std::filesystem::path &target, long timeoutSeconds,
                 long &resultCode);

/// Makes sure `fileName` is present in the data folder and gives its
/// path. Fails with "Error %d: failed to download geoid from\n%s" (result
/// code and URL) when it is missing everywhere and cannot be fetched.
Status ensureGridPresent(const GeoidFolders &folders, const std::string &fileName,
                         std::filesystem::path &path);

} // namespace tramline::geodesy
