#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "c/Handles.h"
#include "params/ParameterFileName.h"
#include "params/Printer.h"
#include "params/RecordLoading.h"
#include "params/Survey.h"
#include "params/ValueWarnings.h"
#include "support/platform/File.h"

using namespace kiv;
using namespace kiv::c;

namespace {

int load(kiv_parameters& parameters, std::string text, std::optional<std::int32_t> id) {
    auto file = std::make_shared<LoadedFile>();
    file->text = std::move(text);
    TextSource source(file->text);
    Survey survey;
    ParsedFile parsed = surveyParameterFile(source, id, survey);
    if (auto errors = errorsIn(parsed, survey); !errors.empty()) {
        parameters.faults = std::move(errors);
        return KIV_STATUS_BAD_FORMAT;
    }
    RecordLoading::store(file->record, parsed);
    file->warnings = warningsIn(parsed, survey);
    file->document = std::move(parsed.document);
    parameters.file = std::move(file);
    return KIV_STATUS_OK;
}

int findingAt(const std::vector<Finding>& findings, size_t index, int64_t* line, int64_t* column,
              const char** expected, const char** found) {
    if (index >= findings.size() || !line || !column || !expected || !found)
        return KIV_STATUS_BAD_ARGUMENT;
    const Finding& finding = findings[index];
    *line = static_cast<int64_t>(finding.line);
    *column = static_cast<int64_t>(finding.column);
    *expected = finding.expected.c_str();
    *found = finding.found.c_str();
    return KIV_STATUS_OK;
}

std::optional<std::string> textOf(const char* path) {
    platform::InputFile file;
    if (!file.open(platform::Utf8Path{path}))
        return std::nullopt;
    std::string text;
    char buffer[16 * 1024];
    while (const std::size_t n = file.read(buffer, sizeof buffer))
        text.append(buffer, n);
    return file.failed() ? std::nullopt : std::optional(std::move(text));
}

bool writeTo(platform::Utf8Path path, const Document& document) {
    platform::OutputFile file;
    if (!file.create(path))
        return false;
    print(document, file);
    file.flush();
    file.sync();
    return file.close();
}

} // namespace

int kiv_parameters_new(kiv_parameters** out) {
    if (!out)
        return KIV_STATUS_BAD_ARGUMENT;
    return guarded([=] {
        *out = new kiv_parameters;
        return KIV_STATUS_OK;
    });
}

void kiv_parameters_free(kiv_parameters* parameters) {
    delete parameters;
}

int kiv_parameters_copy(const kiv_parameters* parameters, kiv_parameters** out) {
    if (!parameters || !out)
        return KIV_STATUS_BAD_ARGUMENT;
    return guarded([=] {
        *out = new kiv_parameters(*parameters);
        return KIV_STATUS_OK;
    });
}

int kiv_parameters_load(kiv_parameters* parameters, const char* path) {
    if (!parameters || !path)
        return KIV_STATUS_BAD_ARGUMENT;
    parameters->faults.clear();
    return guarded([=]() -> int {
        std::optional<std::string> text = textOf(path);
        if (!text)
            return KIV_STATUS_CANNOT_OPEN;
        const std::string_view whole(path);
        const std::string_view name = whole.substr(whole.find_last_of("/\\") + 1);
        return load(*parameters, *std::move(text), sensorIdIn(name));
    });
}

int kiv_parameters_load_text(kiv_parameters* parameters, const char* text, size_t size) {
    if (!parameters || !text)
        return KIV_STATUS_BAD_ARGUMENT;
    parameters->faults.clear();
    return guarded([=] { return load(*parameters, std::string(text, size), std::nullopt); });
}

int kiv_parameters_fault_count(const kiv_parameters* parameters, size_t* count) {
    if (!parameters || !count)
        return KIV_STATUS_BAD_ARGUMENT;
    *count = parameters->faults.size();
    return KIV_STATUS_OK;
}

int kiv_parameters_fault(const kiv_parameters* parameters, size_t index, int64_t* line,
                         int64_t* column, const char** expected, const char** found) {
    return parameters ? findingAt(parameters->faults, index, line, column, expected, found)
                      : KIV_STATUS_BAD_ARGUMENT;
}

int kiv_parameters_warning_count(const kiv_parameters* parameters, size_t* count) {
    if (!parameters || !count)
        return KIV_STATUS_BAD_ARGUMENT;
    *count = parameters->file ? parameters->file->warnings.size() : 0;
    return KIV_STATUS_OK;
}

int kiv_parameters_warning(const kiv_parameters* parameters, size_t index, int64_t* line,
                           int64_t* column, const char** expected, const char** found) {
    return parameters && parameters->file
               ? findingAt(parameters->file->warnings, index, line, column, expected, found)
               : KIV_STATUS_BAD_ARGUMENT;
}

int kiv_parameters_text(const kiv_parameters* parameters, const char** text, size_t* size) {
    if (!parameters || !text || !size)
        return KIV_STATUS_BAD_ARGUMENT;
    if (!parameters->file)
        return KIV_STATUS_NOT_LOADED;
    *text = parameters->file->text.c_str();
    *size = parameters->file->text.size();
    return KIV_STATUS_OK;
}

int kiv_parameters_rewrite(const kiv_parameters* parameters, const char* path) {
    if (!parameters || !path)
        return KIV_STATUS_BAD_ARGUMENT;
    if (!parameters->file)
        return KIV_STATUS_NOT_LOADED;
    return guarded([=] {
        const std::string copyPath = std::string(path) + "$tmp";
        const platform::Utf8Path copy{copyPath.c_str()};
        if (writeTo(copy, parameters->file->document)
            && platform::replaceFile(copy, platform::Utf8Path{path}))
            return KIV_STATUS_OK;
        platform::removeFile(copy);
        return KIV_STATUS_CANNOT_OPEN;
    });
}
