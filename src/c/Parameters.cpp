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
#include "support/platform/Replacement.h"
#include "support/platform/SystemError.h"

using namespace kiv;
using namespace kiv::c;

namespace {

// The name is the text's in what is refused.
int load(kiv_parameters& parameters, std::string_view name, std::string text,
         std::optional<std::int32_t> id) {
    auto file = std::make_shared<LoadedFile>();
    file->text = std::move(text);
    TextSource source(file->text);
    Survey survey;
    ParsedFile parsed = surveyParameterFile(source, id, survey);
    if (auto errors = errorsIn(parsed, survey); !errors.empty()) {
        parameters.faults = std::move(errors);
        const Finding& first = parameters.faults.front();
        return refuseFile(KIV_STATUS_BAD_FORMAT, name, ":", first.line, ":", first.column,
                          ": expected ", first.expected, ", found ", first.found);
    }
    RecordLoading::store(file->record, parsed);
    file->warnings = warningsIn(parsed, survey);
    file->document = std::move(parsed.document);
    parameters.file = std::move(file);
    return KIV_STATUS_OK;
}

int findingAt(const std::vector<Finding>& findings, size_t index, int64_t* line, int64_t* column,
              const char** expected, const char** found) {
    if (const int code = refuseNull({{"line", line}, {"column", column}}))
        return code;
    if (const int code = refuseNull({{"expected", expected}, {"found", found}}))
        return code;
    if (index >= findings.size())
        return refuse(KIV_STATUS_BAD_ARGUMENT, "index: expected one below the count, ",
                      findings.size(), ", found ", index);
    const Finding& finding = findings[index];
    *line = static_cast<int64_t>(finding.line);
    *column = static_cast<int64_t>(finding.column);
    *expected = finding.expected.c_str();
    *found = finding.found.c_str();
    return KIV_STATUS_OK;
}

// The system's own number of the reason is 0 where it had no part in it.
int refuseFileFor(const char* path, const std::string& reason, int systemError) {
    RefusalText text(systemError);
    text.addPath(path);
    text.add(": ");
    text.add(reason);
    return KIV_STATUS_CANNOT_OPEN;
}

int refuseBySystem(const char* path, int systemError) {
    return refuseFileFor(path, platform::systemErrorText(systemError), systemError);
}

// 0 with the file's text, or a refusal.
int read(const char* path, std::string& text) {
    platform::InputFile file;
    if (!file.open(platform::Utf8Path{path})) {
        const int error = platform::lastSystemError();
        return error ? refuseBySystem(path, error)
                     : refuseFile(KIV_STATUS_CANNOT_OPEN, path, ": expected a regular file");
    }
    char buffer[16 * 1024];
    while (const std::size_t n = file.read(buffer, sizeof buffer))
        text.append(buffer, n);
    return file.failed() ? refuseBySystem(path, platform::lastSystemError()) : int{KIV_STATUS_OK};
}

} // namespace

int kiv_parameters_new(kiv_parameters** out) {
    return guarded({{"out", out}}, [=] {
        *out = new kiv_parameters;
        return *out ? KIV_STATUS_OK : refuseMemory();
    });
}

void kiv_parameters_free(kiv_parameters* parameters) {
    delete parameters;
}

int kiv_parameters_copy(const kiv_parameters* parameters, kiv_parameters** out) {
    return guarded({{"parameters", parameters}, {"out", out}}, [=] {
        *out = new kiv_parameters(*parameters);
        return *out ? KIV_STATUS_OK : refuseMemory();
    });
}

int kiv_parameters_load(kiv_parameters* parameters, const char* path) {
    return guarded({{"parameters", parameters}, {"path", path}}, [=]() -> int {
        parameters->faults.clear();
        std::string text;
        if (const int code = read(path, text))
            return code;
        const std::string_view whole(path);
        const std::string_view name = whole.substr(whole.find_last_of("/\\") + 1);
        return load(*parameters, whole, std::move(text), sensorIdIn(name));
    });
}

int kiv_parameters_load_text(kiv_parameters* parameters, const char* text, size_t size) {
    return guarded({{"parameters", parameters}, {"text", text, size}}, [=] {
        parameters->faults.clear();
        return load(*parameters, "text", size ? std::string(text, size) : "", std::nullopt);
    });
}

int kiv_parameters_fault_count(const kiv_parameters* parameters, size_t* count) {
    return guarded({{"parameters", parameters}, {"count", count}}, [=] {
        *count = parameters->faults.size();
        return KIV_STATUS_OK;
    });
}

int kiv_parameters_fault(const kiv_parameters* parameters, size_t index, int64_t* line,
                         int64_t* column, const char** expected, const char** found) {
    return guarded({{"parameters", parameters}}, [=] {
        return findingAt(parameters->faults, index, line, column, expected, found);
    });
}

int kiv_parameters_warning_count(const kiv_parameters* parameters, size_t* count) {
    return guarded({{"parameters", parameters}, {"count", count}}, [=] {
        *count = parameters->file ? parameters->file->warnings.size() : 0;
        return KIV_STATUS_OK;
    });
}

int kiv_parameters_warning(const kiv_parameters* parameters, size_t index, int64_t* line,
                           int64_t* column, const char** expected, const char** found) {
    return guarded({{"parameters", parameters}}, [=] {
        const std::vector<Finding> none;
        const auto& all = parameters->file ? parameters->file->warnings : none;
        return findingAt(all, index, line, column, expected, found);
    });
}

int kiv_parameters_text(const kiv_parameters* parameters, const char** text, size_t* size) {
    return guarded({{"parameters", parameters}, {"text", text}, {"size", size}}, [=]() -> int {
        if (!parameters->file)
            return refuseUnloaded();
        *text = parameters->file->text.c_str();
        *size = parameters->file->text.size();
        return KIV_STATUS_OK;
    });
}

int kiv_parameters_rewrite(const kiv_parameters* parameters, const char* path) {
    return guarded({{"parameters", parameters}, {"path", path}}, [=]() -> int {
        if (!parameters->file)
            return refuseUnloaded();
        const auto fault = platform::replaceWhole(platform::Utf8Path{path}, [&](ByteSink& file) {
            print(parameters->file->document, file);
        });
        return fault ? refuseFileFor(path, fault.reason, fault.system) : int{KIV_STATUS_OK};
    });
}
