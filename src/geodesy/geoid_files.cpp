#include "geodesy/geoid_files.h"

#include "base/atomic_save.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "geodesy/messages.h"

#include <curl/curl.h>

#include <cstdio>
#include <fstream>
#include <mutex>

namespace tramline::geodesy {

namespace {

bool canOpen(const std::filesystem::path &path) {
    std::ifstream in(path, std::ios::binary);
    return static_cast<bool>(in);
}

size_t writeToFile(char *data, size_t size, size_t count, void *file) {
    return std::fwrite(data, size, count, static_cast<std::FILE *>(file));
}

} // namespace

std::string geoidGridUrl(const std::string &serverBase, const std::string &fileName) {
    std::string url = serverBase;
    if (!url.empty() && url.back() != '/')
        url += '/';
    url += "GeoidGrids/";
    url += toLower(fileName);
    return url;
}

int downloadFile(const std::string &url, const std::filesystem::path &target, long timeoutSeconds,
                 long &resultCode) {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
    resultCode = 0;
    // Into a file beside the target, renamed when whole: a broken transfer
    // must not leave a grid that looks present.
    std::filesystem::path partial = target;
    partial += ".part";
    std::FILE *file = std::fopen(partial.string().c_str(), "wb");
    if (!file) {
        resultCode = CURLE_WRITE_ERROR;
        return 0;
    }
    CURL *curl = curl_easy_init();
    if (!curl) {
        std::fclose(file);
        std::filesystem::remove(partial);
        resultCode = CURLE_FAILED_INIT;
        return 0;
    }
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, writeToFile);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, file);
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_MAXREDIRS, 5L);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, std::min(timeoutSeconds, 30L));
    curl_easy_setopt(curl, CURLOPT_TIMEOUT, timeoutSeconds);
    const CURLcode code = curl_easy_perform(curl);
    long status = 0;
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
    curl_easy_cleanup(curl);
    const bool written = std::fclose(file) == 0;

    std::error_code ec;
    const bool isHttp = url.starts_with("http");
    if (code == CURLE_OK && written && (!isHttp || (status >= 200 && status < 300))) {
        std::filesystem::rename(partial, target, ec);
        if (!ec)
            return 1;
        resultCode = CURLE_WRITE_ERROR;
    } else {
        resultCode = code != CURLE_OK ? static_cast<long>(code)
                                      : (written ? status : static_cast<long>(CURLE_WRITE_ERROR));
    }
    std::filesystem::remove(partial, ec);
    return 0;
}

Status ensureGridPresent(const GeoidFolders &folders, const std::string &fileName,
                         std::filesystem::path &path) {
    path = folders.dataFolder / fileName;
    if (canOpen(path))
        return Status::success();

    const auto bundled = folders.dataFolder / "geoids" / fileName;
    if (canOpen(bundled)) {
        if (copyAtomically(bundled, path) && canOpen(path))
            return Status::success();
    }

    const std::string url = geoidGridUrl(folders.serverBase, fileName);
    long resultCode = 0;
    if (downloadFile(url, path, folders.downloadTimeoutSeconds, resultCode) == 1 && canOpen(path))
        return Status::success();
    return Status::failure(StatusCode::Download, format(tr(messages::kDownloadFailed),
                                                        static_cast<int>(resultCode), url.c_str()));
}

} // namespace tramline::geodesy
