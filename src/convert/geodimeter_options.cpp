#include "convert/geodimeter_options.h"

#include "base/atomic_save.h"
#include "base/format.h"
#include "base/line_reader.h"
#include "base/text.h"
#include "base/translation.h"

#include <fstream>

namespace tramline::convert {

namespace {

// Settings lines are read into buffers of this size, as "tramline.ini".
constexpr std::size_t kSettingsLineBuffer = 222;

const char *const kTitle = trNoop("Geodimeter Process Options");
const char *const kStripCaption = trNoop("Strip Decimal Point From Point Codes");
const char *const kInfoCaption = trNoop("Use Info Codes In Point Descriptions");

std::vector<FormField> optionFields(const GeodimeterOptions &options) {
    const std::vector<std::string> yesNo = {tr("Yes"), tr("No")};
    return {{tr(kStripCaption), options.stripDecimal ? tr("Yes") : tr("No"), yesNo},
            {tr(kInfoCaption), options.infoCodes ? tr("Yes") : tr("No"), yesNo}};
}

} // namespace

Status readGeodimeterOptions(std::istream &in, GeodimeterOptions &options) {
    LineReader reader(in, kSettingsLineBuffer);
    for (std::string line; reader.next(line);) {
        const std::string_view text = trim(line);
        if (text.empty() || (text.starts_with('[') && text.ends_with(']')))
            continue;
        std::string_view key, value;
        bool *flag = nullptr;
        if (splitKeyValue(text, '=', key, value)) {
            if (key == "is_strip")
                flag = &options.stripDecimal;
            else if (key == "is_info")
                flag = &options.infoCodes;
            else if (!key.empty())
                continue;
        }
        if (!flag || (value != "0" && value != "1"))
            return Status::failure(
                StatusCode::Format,
                format(tr("Error: bad line %ld in %s"), long(reader.lineNumber()), kGeodimeterIni),
                reader.lineNumber());
        *flag = value == "1";
    }
    if (reader.failed())
        return Status::failure(
            StatusCode::Io,
            format(tr("Error: bad line %ld in %s"), long(reader.lineNumber()), kGeodimeterIni),
            reader.lineNumber());
    return Status::success();
}

Status loadGeodimeterOptions(const std::filesystem::path &file, GeodimeterOptions &options) {
    std::error_code ec;
    if (!std::filesystem::exists(file, ec))
        return Status::success();
    std::ifstream in(file, std::ios::binary);
    if (!in || std::filesystem::is_directory(file, ec))
        return Status::failure(StatusCode::Io,
                               format(tr("Error: unable to read %s"), file.string().c_str()));
    return readGeodimeterOptions(in, options);
}

bool saveGeodimeterOptions(const std::filesystem::path &file, const GeodimeterOptions &options) {
    return saveTextAtomically(file, format("is_strip=%d\nis_info=%d\n", int(options.stripDecimal),
                                           int(options.infoCodes)));
}

bool askGeodimeterOptions(Interaction &ui, GeodimeterOptions &options) {
    std::vector<FormField> fields = optionFields(options);
    if (!ui.fillForm(tr(kTitle), fields))
        return false;
    options.stripDecimal = fields[0].value == tr("Yes");
    options.infoCodes = fields[1].value == tr("Yes");
    return true;
}

bool GeodimeterOptionsAnswered::fillForm(const std::string &title, std::vector<FormField> &fields) {
    if (title != tr(kTitle))
        return ForwardingInteraction::fillForm(title, fields);
    fields = optionFields(m_options);
    return true;
}

} // namespace tramline::convert
