#pragma once

// kiv.h for C++17 and later, of any compiler and standard library: nothing but C crosses the
// library's boundary. Handles are freed by themselves and can be moved; a refused call throws
// kiv::Error. Everything else is as kiv.h says.

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "kiv.h"

namespace kiv {

using Reading = kiv_reading;
using Result = kiv_result;
using Trust = kiv_trust;
using Uncertainty = kiv_uncertainty;
using CalibrationUncertainty = kiv_calibration_uncertainty;

enum class Frame { local = KIV_FRAME_LOCAL, machine = KIV_FRAME_MACHINE };

// A status code other than 0. The text is the detail of the refusal.
class Error : public std::runtime_error {
public:
    explicit Error(int status) : Error(status, kiv_status_text(status)) {}
    Error(int status, const std::string& text) : std::runtime_error(text), number(status) {}
    int status() const noexcept { return number; }

private:
    int number;
};

inline void check(int status) {
    if (status != KIV_STATUS_OK)
        throw Error(status, kiv_last_error());
}

namespace detail {

template <auto free>
struct Free {
    template <typename Handle>
    void operator()(Handle* handle) const noexcept {
        free(handle);
    }
};

// What create(&handle) hands out.
template <typename Handle, typename Create>
Handle* made(Create create) {
    Handle* handle = nullptr;
    check(create(&handle));
    return handle;
}

} // namespace detail

struct Fault {
    std::int64_t line; // from 1, as the column
    std::int64_t column;
    std::string expected;
    std::string found;
};

// A parameter file that does not follow its format.
class ParameterFileError : public Error {
public:
    ParameterFileError(const std::string& name, std::vector<Fault> faults)
        : Error(KIV_STATUS_BAD_FORMAT, textOf(name, faults)), all(std::move(faults)) {}
    const std::vector<Fault>& faults() const noexcept { return all; } // at least one

private:
    static std::string textOf(const std::string& name, const std::vector<Fault>& faults) {
        const Fault& f = faults.front();
        return name + ':' + std::to_string(f.line) + ':' + std::to_string(f.column) + ": expected "
               + f.expected + ", found " + f.found;
    }
    std::vector<Fault> all;
};

// What one sensor's parameter file says.
class Parameters {
public:
    Parameters() : handle(detail::made<kiv_parameters>(kiv_parameters_new)) {}
    explicit Parameters(const std::string& path) : Parameters() { load(path); } // UTF-8
    static Parameters fromText(const std::string& text) {
        Parameters made;
        made.loaded(kiv_parameters_load_text(made.get(), text.data(), text.size()), "text");
        return made;
    }
    Parameters copy() const {
        return Parameters(detail::made<kiv_parameters>(
            [&](kiv_parameters** out) { return kiv_parameters_copy(get(), out); }));
    }

    void load(const std::string& path) { loaded(kiv_parameters_load(get(), path.c_str()), path); }
    // What is doubtful in what is loaded, as kiv check warns of it.
    std::vector<Fault> warnings() const {
        return findings(kiv_parameters_warning_count, kiv_parameters_warning);
    }
    void rewrite(const std::string& path) const {
        check(kiv_parameters_rewrite(get(), path.c_str()));
    }
    // The values of a block, by its name.
    std::vector<float> numbers(const char* block) const {
        std::size_t count = 0;
        check(kiv_parameters_number_count(get(), block, &count));
        std::vector<float> values(count);
        check(kiv_parameters_numbers(get(), block, values.data(), count));
        return values;
    }

    kiv_parameters* get() const noexcept { return handle.get(); } // for the functions of kiv.h

private:
    explicit Parameters(kiv_parameters* own) : handle(own) {}

    template <typename Count, typename Get>
    std::vector<Fault> findings(Count count, Get getOne) const {
        std::size_t size = 0;
        check(count(get(), &size));
        std::vector<Fault> all(size);
        for (std::size_t i = 0; i < size; ++i) {
            Fault& f = all[i];
            const char *expected = nullptr, *found = nullptr;
            check(getOne(get(), i, &f.line, &f.column, &expected, &found));
            f.expected = expected;
            f.found = found;
        }
        return all;
    }

    void loaded(int status, const std::string& name) const {
        if (status != KIV_STATUS_BAD_FORMAT)
            return check(status);
        throw ParameterFileError(name, findings(kiv_parameters_fault_count, kiv_parameters_fault));
    }

    std::unique_ptr<kiv_parameters, detail::Free<kiv_parameters_free>> handle;
};

// Turns readings into orientations.
class Sensor {
public:
    explicit Sensor(const Parameters& parameters, Frame frame = Frame::machine)
        : handle(detail::made<kiv_sensor>(
            [&](kiv_sensor** out) { return kiv_sensor_new(parameters.get(), out); })) {
        setFrame(frame);
    }
    Sensor copy() const {
        return Sensor(detail::made<kiv_sensor>(
            [&](kiv_sensor** out) { return kiv_sensor_copy(get(), out); }));
    }

    void setFrame(Frame frame) { check(kiv_sensor_set_frame(get(), static_cast<int>(frame))); }

    Result update(const Reading& reading) {
        Result result;
        check(kiv_sensor_update(get(), &reading, &result));
        return result;
    }
    // Contiguous ranges (a vector, an array, a span), as many results as readings at least. Where
    // they are wanted, room for as many states (KIV_STATE_...) and matrices of 9 doubles.
    template <typename Readings, typename Results>
    void update(const Readings& readings, Results&& results, std::uint8_t* states = nullptr,
                double* matrices = nullptr) {
        const std::size_t count = std::size(readings);
        requireRoom("results", std::size(results), count);
        check(kiv_sensor_update_many(get(), std::data(readings), count, std::data(results),
                                     matrices, states));
    }

    // A standard uncertainty of a reading or parameter.
    void setUncertainty(const char* name, double value) {
        check(kiv_sensor_set_uncertainty(get(), name, value));
    }
    void clearUncertainties() { check(kiv_sensor_clear_uncertainties(get())); }

    // An update, with how far its result can be trusted; the uncertainty where it is wanted.
    Result judge(const Reading& reading, Trust& trust, Uncertainty* uncertainty = nullptr) {
        Result result;
        check(kiv_sensor_judge(get(), &reading, &result, &trust, uncertainty));
        return result;
    }
    // Contiguous ranges, as many results and trusts as readings at least; the rest as in update.
    template <typename Readings, typename Results, typename Trusts>
    void judge(const Readings& readings, Results&& results, Trusts&& trusts,
               Uncertainty* uncertainties = nullptr, std::uint8_t* states = nullptr,
               double* matrices = nullptr) {
        const std::size_t count = std::size(readings);
        requireRoom("results", std::size(results), count);
        requireRoom("trusts", std::size(trusts), count);
        check(kiv_sensor_judge_many(get(), std::data(readings), count, std::data(results), matrices,
                                    states, std::data(trusts), uncertainties));
    }

    // What a calibration found: names of parameters and their covariance, row by row.
    void setCalibration(const std::vector<std::string>& names,
                        const std::vector<double>& covariance) {
        requireRoom("covariance", covariance.size(), names.size() * names.size());
        std::vector<const char*> texts;
        for (const std::string& name : names)
            texts.push_back(name.c_str());
        check(kiv_sensor_set_calibration(get(), texts.data(), texts.size(), covariance.data()));
    }
    // As judge, and the calibration's part in the angles' uncertainty.
    template <typename Readings, typename Results, typename Trusts, typename Parts>
    void judgeCalibrated(const Readings& readings, Results&& results, Trusts&& trusts,
                         Parts&& parts, Uncertainty* uncertainties = nullptr,
                         std::uint8_t* states = nullptr, double* matrices = nullptr) {
        const std::size_t count = std::size(readings);
        requireRoom("results", std::size(results), count);
        requireRoom("trusts", std::size(trusts), count);
        requireRoom("parts", std::size(parts), count);
        check(kiv_sensor_judge_calibrated(get(), std::data(readings), count, std::data(results),
                                          matrices, states, std::data(trusts), uncertainties,
                                          std::data(parts)));
    }

    bool hasReference() const {
        bool has = false;
        check(kiv_sensor_has_reference(get(), &has));
        return has;
    }
    Reading reference() const {
        Reading reading;
        check(kiv_sensor_reference_reading(get(), &reading));
        return reading;
    }
    void captureReference(const Reading& reading) {
        check(kiv_sensor_capture_reference(get(), &reading));
    }

    kiv_sensor* get() const noexcept { return handle.get(); } // for the functions of kiv.h

private:
    explicit Sensor(kiv_sensor* own) : handle(own) {}

    static void requireRoom(const char* what, std::size_t found, std::size_t count) {
        if (found < count)
            throw Error(KIV_STATUS_BAD_ARGUMENT,
                        what + (": expected room for " + std::to_string(count)) + ", found "
                            + std::to_string(found));
    }

    std::unique_ptr<kiv_sensor, detail::Free<kiv_sensor_free>> handle;
};

} // namespace kiv
