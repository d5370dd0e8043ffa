#include "host/parameters/Findings.h"

#include <algorithm>
#include <ostream>
#include <tuple>
#include <utility>

#include "host/base/FileKind.h"
#include "host/base/FirstFailure.h"
#include "host/base/Hashing.h"
#include "host/parameters/LeftCopy.h"
#include "host/parameters/ParameterFile.h"
#include "params/Quoted.h"
#include "params/Survey.h"
#include "params/ValueWarnings.h"
#include "support/platform/File.h"

namespace kiv::host {

std::size_t ExaminedFile::errors() const {
    return static_cast<std::size_t>(std::count_if(findings.begin(), findings.end(),
                                                  [](const FileFinding& f) { return f.error; }));
}

ExaminedFile examine(ByteSource& source, std::optional<std::int32_t> id) {
    Survey survey;
    ExaminedFile examined;
    examined.parsed = surveyParameterFile(source, id, survey);
    std::vector<FileFinding>& findings = examined.findings;
    for (Finding& error : errorsIn(examined.parsed, survey))
        findings.push_back({std::move(error), true});
    for (Finding& warning : warningsIn(examined.parsed, survey)) {
        const bool doubt = survey.openEnd && warning == *survey.openEnd;
        findings.push_back({std::move(warning), false, doubt});
    }
    const auto placeOf = [](const FileFinding& f) {
        return std::tie(f.finding.line, f.finding.column);
    };
    std::stable_sort(findings.begin(), findings.end(),
                     [&](const auto& a, const auto& b) { return placeOf(a) < placeOf(b); });
    return examined;
}

std::optional<ExaminedFile> examineFile(const std::string& path, std::ostream& err, Sha256* hash) {
    const FirstFailure failure;
    platform::InputFile file;
    if (!file.open(path.c_str())) {
        reportUnopenedParameters(err, path, failure.error());
        return std::nullopt;
    }
    StartedSource started(file);
    if (const std::string_view kind = started.otherKind(); !kind.empty()) {
        ExaminedFile other;
        other.findings.push_back({{Block{}, 1, 1, "a parameter file", std::string(kind)}, true});
        return other;
    }
    const auto name = parseParameterFileName(path);
    const auto id = name ? std::optional(name->id) : std::nullopt;
    ExaminedFile examined;
    if (hash) {
        HashingSource hashed(started, *hash);
        examined = examine(hashed, id);
        hashed.readOn();
    } else {
        examined = examine(started, id);
    }
    if (!file.failed())
        return examined;
    err << printable(path) << ": " << platform::systemErrorText(failure.error())
        << "; not all of the file could be read\n";
    return std::nullopt;
}

void reportForUse(std::ostream& err, const std::string& path, const ExaminedFile& examined) {
    for (const FileFinding& finding : examined.findings)
        if (finding.error || finding.doubt)
            report(err, path, finding);
}

void report(std::ostream& err, const std::string& path, const FileFinding& f) {
    err << printable(path) << ':' << f.finding.line << ':' << f.finding.column << ": expected "
        << f.finding.expected << ", found " << f.finding.found << (f.error ? "\n" : " (warning)\n");
}

} // namespace kiv::host
