#include <CLI/CLI.hpp>
#include <memory>
#include <optional>

#include "acquisition/CoefficientTransfer.h"
#include "acquisition/zvn/ZvnAcqDevice.h"
#include "acquisition/zvn/ZvnManager.h"
#include "cli/arguments.h"
#include "cli/devices.h"
#include "cli/output_set.h"

using namespace tonewright;

namespace {

struct ListOptions {
    std::string check;  ///< a device to look at; empty: all are listed
    std::string config;
};

struct TransferOptions {
    DeviceChoice choice;
    std::string file;                           ///< written by receive, read by send
    CoefficientWay way = CoefficientWay::None;  ///< the one that is found
    std::string backup;
};

Outcome listAll() {
    Json list = Json::array();
    for (const std::string& name : ListDevices()) {
        const ZvnLocation location(name);
        list.push_back({{"name", name},
                        {"kind", GetDeviceWord(CTonewrightAcq::Classify(location).deviceKind)},
                        {"acquisitionResources", ZvnManager::GetResourceCount(location, 0)},
                        {"acquisitionDevices", ZvnManager::GetResourceCount(location, 8)}});
    }
    return {list};
}

/// What spoils a calibration as a camera is set, beside what opening it tells.
Outcome check(const ListOptions& options) {
    const std::string name = FindDevice(options.check);
    const ZvnLocation location(name);
    Json notes = Json::array();
    const auto server = CTonewrightAcq::Classify(location);
    if (server.category != 1) {
        ZvnAcqDevice camera(location, options.config.c_str());
        if (!camera.Create()) throw WorkFailure(name + ": cannot be opened");
        for (const ZvnNote& note : camera.GetNotes()) {
            notes.push_back(
                {{"feature", note.feature}, {"value", note.value}, {"line", note.line}, {"text", note.text}});
        }
    }
    return {{{"name", name}, {"kind", GetDeviceWord(server.deviceKind)}, {"notes", notes}}};
}

Json describe(const DeviceTransfer& transfer, const TransferOptions& options) {
    return {{"file", options.file},
            {"device", transfer.device},
            {"kind", transfer.kind},
            {"way", GetWayName(transfer.way)},
            {"written", true}};
}

Outcome send(const TransferOptions& options) {
    const auto [transfer, sent] = SendToDevice(options.choice, options.file, options.way, options.backup);
    Json document = describe(transfer, options);
    document["verified"] = sent.verified;
    if (!sent.verified) Tell("warning: " + transfer.device + ": what was sent could not be read back to compare");
    return {document};
}

Outcome receive(const TransferOptions& options) {
    const auto outputs = std::make_shared<OutputSet>();
    Json document;
    outputs->Add(options.file, [&](const std::string& name) {
        document = describe(ReceiveFromDevice(options.choice, name), options);
    });
    return {document, kDone, outputs};
}

void addDevices(CLI::App& tool, Work& work) {
    CLI::App* command = AddCommand(tool, "devices", "Lists the cameras and frame grabbers of the machine.");
    const auto options = std::make_shared<ListOptions>();
    CLI::Option* checked = command
                               ->add_option("--check", options->check,
                                            "A camera to open and look at: what in it would spoil a calibration")
                               ->type_name("NAME");
    command->add_option("--config", options->config, "A text of lines \"feature = value\", applied before")
        ->type_name("FILE")
        ->needs(checked);
    command->callback([options, &work] {
        work = [options] {
            if (options->check.empty()) return listAll();
            return BackendWords(Tell).Explain([&] { return check(*options); });
        };
    });
}

void addTransfer(CLI::App& tool, Work& work, bool sends) {
    CLI::App* command = sends ? AddCommand(tool, "send", "Writes a coefficient file to a device.")
                              : AddCommand(tool, "receive", "Saves the coefficients of a device.");
    const auto options = std::make_shared<TransferOptions>();
    command->add_option("FILE", options->file, sends ? "A coefficient file (.ccor)" : "The file to write (.ccor)")
        ->required();
    AddDeviceOptions(*command, options->choice, true);
    if (sends) {
        AddParsed(*command, "--way", options->way, ParseCoefficientWay, "auto, file or features",
                  "file: the device's file; features: a camera's color transformation features; auto: the file where "
                  "there is one, else the features (default: auto)")
            ->type_name("auto|file|features");
        command->add_option("--backup", options->backup, "Receives the device's present coefficients before")
            ->type_name("FILE");
    }
    command->callback([options, sends, &work] {
        work = [options, sends] {
            return BackendWords(Tell).Explain([&] { return sends ? send(*options) : receive(*options); });
        };
    });
}

}  // namespace

void AddDeviceCommands(CLI::App& tool, Work& work) {
    addDevices(tool, work);
    AddGrabCommand(tool, work);
    addTransfer(tool, work, true);
    addTransfer(tool, work, false);
}
