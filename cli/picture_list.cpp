#include "cli/picture_list.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <mutex>
#include <set>

#include "cli/chart_finding.h"
#include "cli/output_set.h"
#include "cli/progress.h"
#include "cli/signals.h"

using namespace tonewright;

namespace fs = std::filesystem;

namespace {

/// What came of a picture, until it is told.
struct Result {
    Outcome outcome;
    std::string error;  ///< empty where all was done
    std::string words;
};

/// From the best to the worst: a picture that failed has no verdict.
constexpr ExitStatus kWorse[] = {kDone, kLimitBroken, kWorkFailed, kWrongUsage};

int worseOf(int one, int other) {
    const auto rank = [](int status) { return std::find(std::begin(kWorse), std::end(kWorse), status); };
    return std::max(rank(one), rank(other)) == rank(one) ? one : other;
}

/// The text with the picture's name in front, unless it speaks of it already.
std::string named(const std::string& text, const std::string& picture) {
    return text.find(picture) == std::string::npos ? picture + ": " + text : text;
}

Result workOn(const std::string& picture, const std::function<Outcome(const std::string& picture)>& work) {
    Result result;
    const KeptWords words(picture);
    const auto failure = WhyFailed([&] {
        try {
            result.outcome = work(picture);
        } catch (const ChartNotFound& notFound) {
            result.outcome.document = DescribeNotFound(picture, notFound);
            throw;
        }
    });
    if (failure) {
        result.outcome.status = failure->status;
        result.error = named(failure->text, picture);
        Tell(result.error);
    } else if (result.outcome.status == kWorkFailed) {
        result.error = named("has findings that --strict does not let pass", picture);
    }
    result.words = words.GetText();
    return result;
}

/// Tells results in the list's order, whichever comes first.
class Teller {
public:
    explicit Teller(const PictureList& list)
        : pictures_(list.pictures),
          results_(list.pictures.size()),
          progress_(list.pictures.size(), !::isatty(STDOUT_FILENO)) {}

    void Take(std::size_t index, Result result) {
        const std::lock_guard lock(gate_);
        results_[index] = std::move(result);
        for (; next_ < results_.size() && results_[next_]; ++next_) {
            if (!isBroken_) Conclude(*results_[next_]);
            results_[next_].reset();
        }
    }

    /// Whether standard output takes nothing any more.
    bool IsBroken() const { return isBroken_; }
    int GetStatus() const { return status_; }

private:
    /// Puts the files in their places while the line is told.
    void Conclude(Result& result) {
        if (!result.outcome.outputs) result.outcome.outputs = std::make_shared<OutputSet>();
        const auto failure = WhyFailed([&] { result.outcome.outputs->Commit([&] { return PrintLine(result); }); });
        if (failure && !isBroken_) {
            const std::string text = named(failure->text, pictures_[next_]);
            result.outcome.document = {};
            result.outcome.status = failure->status;
            result.error = text;
            result.words += "tonewright: " + text + "\n";
            PrintLine(result);
        }
        status_ = worseOf(status_, result.outcome.status);
        progress_.TellDone(pictures_[next_], [&] { std::cerr << result.words; });
    }

    bool PrintLine(const Result& result) {
        const std::string& picture = pictures_[next_];
        Json line = {{"image", picture}};
        line["ok"] = result.error.empty();
        line["error"] = result.error.empty() ? Json() : Json(result.error);
        if (result.outcome.document.is_object()) line.update(result.outcome.document);
        std::cout << line.dump(-1, ' ', false, Json::error_handler_t::replace) << std::endl;
        isBroken_ = !std::cout;
        return !isBroken_;
    }

    std::mutex gate_;
    const std::vector<std::string>& pictures_;
    std::vector<std::optional<Result>> results_;
    std::size_t next_ = 0;
    int status_ = kDone;
    std::atomic<bool> isBroken_ = false;
    Progress progress_;
};

void makeFolder(const std::string& folder) {
    if (folder.empty()) return;
    std::error_code error;
    fs::create_directories(folder, error);
    if (!fs::is_directory(folder, error)) throw WorkFailure(folder + ": cannot make the folder");
}

}  // namespace

void AddPictureOptions(CLI::App& command, PictureList& list, const std::string& written) {
    command.add_option("IMAGE", list.pictures, "The picture of the chart; several give a line of JSON each")
        ->required();
    command.add_option("--output-folder", list.folder, "Where each picture's files go, under its name: " + written)
        ->type_name("FOLDER");
    AddJobsOption(command, list.jobs, "pictures");
}

std::string PlaceFor(const std::string& folder, const std::string& picture, const std::string& extension) {
    return (fs::path(folder) / fs::path(picture).stem()).native() + extension;
}

void RequireOwnPlaces(const PictureList& list,
                      const std::function<std::vector<std::string>(const std::string& picture)>& placesFor,
                      const std::vector<std::string>& inputs) {
    std::set<std::string> taken, written;
    for (const std::string& input : inputs) taken.insert(OutputSet::PlaceOf(input));
    for (const std::string& picture : list.pictures) {
        for (const std::string& path : placesFor(picture)) {
            if (path.empty()) continue;
            const std::string place = OutputSet::PlaceOf(path);
            if (taken.contains(place)) throw UsageFailure(path + " is to be written, and is an input");
            if (written.insert(place).second) continue;
            throw UsageFailure(path + " is to be written for two pictures, which have the same name");
        }
    }
}

void RequireNoSingleFile(const std::vector<std::pair<std::string, std::string>>& options, const std::string& instead) {
    for (const auto& [name, value] : options) {
        if (value.empty()) continue;
        throw UsageFailure(std::string(name).append(" is a file of one picture; with many pictures ").append(instead));
    }
}

Outcome WorkOnEach(const PictureList& list, const std::function<Outcome(const std::string& picture)>& work) {
    makeFolder(list.folder);
    Teller teller(list);
    SignalWatch::TakeRequests();
    const std::size_t begun = DoSideBySide(list.pictures.size(), list.jobs, [&](std::size_t i, std::size_t) {
        if (!teller.IsBroken()) teller.Take(i, workOn(list.pictures[i], work));
    });
    for (std::size_t i = begun; i < list.pictures.size(); ++i) {
        Result missed;
        missed.outcome.status = kWorkFailed;
        missed.error = list.pictures[i] + ": not begun, since the call ended";
        teller.Take(i, std::move(missed));
    }
    if (teller.IsBroken()) throw WorkFailure("cannot write to standard output");
    return {{}, teller.GetStatus()};
}
