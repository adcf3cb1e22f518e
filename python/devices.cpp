#include "acquisition/devices.h"

#include <mutex>

#include "acquisition/CoefficientTransfer.h"
#include "acquisition/FrameGrabber.h"
#include "foundation/StagedFile.h"
#include "python/pixel_array.h"

using namespace tonewright;

namespace {

/// A camera or frame grabber of the machine.
struct FoundDevice {
    std::string name;
    const char* kind;
};

// The devices' layer is for one thread at a time. Taken without Python's lock.
std::mutex deviceGate;

/// Works with devices, and hands what they tell to Python's warnings.
template <class Call>
auto workOnDevices(Call call) {
    std::mutex gate;
    std::vector<std::string> lines;
    // Not by a thread of its own: what the session's thread reports belongs to the call, too.
    auto result = Work<NurReportingThread>([&] {
        const std::scoped_lock held(deviceGate);
        BackendWords words([&](const std::string& line) {
            const std::scoped_lock keeping(gate);
            lines.push_back(line);
        });
        return words.Explain(call);
    });
    const py::object warn = py::module_::import("warnings").attr("warn");
    for (const std::string& line : lines) warn(line, py::handle(PyExc_RuntimeWarning), 2);
    return result;
}

std::vector<FoundDevice> listDevices() {
    return workOnDevices([] {
        std::vector<FoundDevice> devices;
        for (const std::string& name : ListDevices()) {
            devices.push_back({name, GetDeviceWord(CTonewrightAcq::Classify(ZvnLocation(name.c_str())).deviceKind)});
        }
        return devices;
    });
}

DeviceChoice toChoice(const std::optional<std::string>& device, const py::object& config) {
    if (device && device->empty()) throw py::value_error("device: None is the first one, not an empty name");
    return {device.value_or(""), config.is_none() ? std::string() : ToPath(config)};
}

py::array grab(const std::optional<std::string>& device, const py::object& config, int average, const py::object& dark,
               const py::object& flat, std::optional<int> bits) {
    if (average < 1 || average > kMostAveraged) {
        throw py::value_error("average: from 1 to " + std::to_string(kMostAveraged));
    }
    const auto toSource = [&](const py::object& picture) {
        if (picture.is_none()) return std::optional<PictureSource>();
        return std::optional<PictureSource>(std::in_place, picture,
                                            py::isinstance<py::array>(picture) ? bits : std::nullopt);
    };
    const std::optional<PictureSource> darkSource = toSource(dark), flatSource = toSource(flat);
    const DeviceChoice choice = toChoice(device, config);
    auto [frame, name] = workOnDevices([&] {
        FrameCorrection correction;
        if (darkSource) correction.dark = darkSource->Load();
        if (flatSource) correction.flat = flatSource->Load();
        FrameGrabber grabber(choice);
        CTivImage image = grabber.GrabMean(average, correction);
        return std::pair(std::move(image), grabber.GetDevice());
    });
    return ToArray(std::move(frame), name);
}

struct Sent {
    DeviceTransfer transfer;
    bool verified;
};

Sent send(const py::object& file, const std::optional<std::string>& device, const py::object& config,
          const std::string& way, const py::object& backup) {
    const auto wanted = ParseCoefficientWay(way);
    if (!wanted) throw py::value_error("way: \"auto\", \"file\" or \"features\"");
    const DeviceChoice choice = toChoice(device, config);
    const std::string path = ToPath(file), kept = backup.is_none() ? std::string() : ToPath(backup);
    return workOnDevices([&] {
        const auto [transfer, sent] = SendToDevice(choice, path, *wanted, kept);
        return Sent{transfer, sent.verified};
    });
}

void receive(const py::object& file, const std::optional<std::string>& device, const py::object& config) {
    const DeviceChoice choice = toChoice(device, config);
    const std::string path = ToPath(file);
    workOnDevices([&] {
        StagedFile staged(path);
        if (staged.GetError()) throw WorkFailure(path + ": " + staged.GetError().message());
        const DeviceTransfer transfer = ReceiveFromDevice(choice, staged.GetName());
        if (const auto error = staged.Commit()) throw WorkFailure(path + ": " + error.message());
        return transfer;
    });
}

void addTransfers(py::module_& module) {
    using namespace py::literals;
    py::class_<Sent>(module, "Sent", "Coefficients that a device has taken.")
        .def_property_readonly("device", [](const Sent& sent) { return sent.transfer.device; })
        .def_property_readonly(
            "kind", [](const Sent& sent) { return sent.transfer.kind; }, "As Device has it.")
        .def_property_readonly(
            "way", [](const Sent& sent) { return GetWayName(sent.transfer.way); },
            "\"file\", \"features\", or \"filter\" for a frame grabber's image filter.")
        .def_readonly("verified", &Sent::verified, "Whether the device, read back, gave the same.");
    module.def("send", send, "path"_a, "device"_a = py::none(), "config"_a = py::none(), "way"_a = "auto",
               "backup"_a = py::none(),
               R"(Writes a coefficient file (.ccor) to a device.

device, config: as for grab. way: "file" is the device's file, "features" a camera's color transformation features,
"auto" the file where there is one, else the features. backup: another file that receives the device's present
coefficients before anything is written.

Returns a Sent. Raises Error for what can be no calibration, and where the device does not take it; color transformation
features are then put back as they were.)");
    module.def("receive", receive, "path"_a, "device"_a = py::none(), "config"_a = py::none(),
               "Saves the coefficients of a device into a file (.ccor). device, config: as for grab. Raises Error.");
}

}  // namespace

void AddDevices(py::module_& module) {
    using namespace py::literals;
    addTransfers(module);
    py::class_<FoundDevice>(module, "Device", "A camera or frame grabber of the machine.")
        .def_readonly("name", &FoundDevice::name, "As grab takes it.")
        .def_property_readonly(
            "kind", [](const FoundDevice& device) { return device.kind; },
            "\"frame grabber\", \"Camera Link camera\" or \"other\".")
        .def("__repr__",
             [](const FoundDevice& device) { return "<tonewright.Device " + device.name + ", " + device.kind + ">"; });
    module.def("devices", listDevices,
               R"(Lists the cameras and frame grabbers of the machine; looking takes about a second.

Where ZVN_SIMULATION names a file, they are the simulated ones that it describes. Returns a list of Device.)");
    module.def("grab", grab, "device"_a = py::none(), "config"_a = py::none(), "average"_a = 1, "dark"_a = py::none(),
               "flat"_a = py::none(), "bits"_a = py::none(),
               R"(Grabs a frame.

device: the name of one of devices(); None is the first. config: a file of lines "feature = value", applied on opening.
average: how many frames make the picture, which is their mean. dark: a picture taken without light, to subtract.
flat: a picture of an even surface, to divide by, each channel over its mean. Both are file names or arrays of the
frames' size; bits: of such arrays, 10 where the frames have 10 bits a channel.

Returns an array as load_image does. What a device tells of its settings goes to warnings.warn. Raises Error where there
is no such device, or no frame comes within a second.)");
}
