"""Load the sample chart, calibrate and preview, gamma, coefficients, parameters, relative mode, a user's illuminant,
colors by hand, the tab "Quality", the simulated frame grabber and camera, and a camera with color features.

The coefficient files must equal the batch tool's to the byte.
"""
import fcntl
import os
import subprocess
import sys
import traceback

from window import Missing, Window, has, run, until
from gi.repository import Atspi

root, build, out = sys.argv[1:]
chart = f"{root}/samples/Tonewright/Images/chart.bmp"
stations = 0

ACQUISITION, COEFFICIENTS = ("Home", "Image Acquisition", "za"), ("Home", "Acquisition Device Coefficients", "zd")
EXECUTION, PARAMETERS = ("Home", "Execution", "ze"), ("Home", "Parameters", "zp")
QUALITY, CAMERA = ("Quality", "Calibration Quality", "zq"), ("Quality", "Camera", "zc")
COMMANDS = {  # where each stands, and the letters of its key tip
    "Configure": (*ACQUISITION, "cf"),
    "Snap": (*ACQUISITION, "sn"),
    "Backup Coefficients": (*COEFFICIENTS, "bc"),
    "Load Coefficients": (*COEFFICIENTS, "lc"),
    "Upload Coefficients": (*EXECUTION, "uc"),
    "Save": (*PARAMETERS, "sp"),
    "Load": (*PARAMETERS, "lp"),
    "Reset": (*PARAMETERS, "rp"),
    "Gamma Adjustment": (*PARAMETERS, "ga"),
    "Absolute": (*PARAMETERS, "ab"),
    "Relative": (*PARAMETERS, "re"),
    "Illuminant Type": (*PARAMETERS, "it"),
    "Color Selection": (*PARAMETERS, "cs"),
    "Find Chart": (*QUALITY, "fc"),
    "Calibration Quality": (*QUALITY, "cq"),
    "Compare": (*QUALITY, "co"),
    "Verify": (*QUALITY, "ve"),
    "Save Report": (*QUALITY, "sr"),
    "Send Coefficients": (*CAMERA, "sf"),
    "Read Coefficients": (*CAMERA, "rf"),
}


def say(words):
    print(words, flush=True)


def shoot(studio, name):
    global stations
    stations += 1
    studio.shoot(f"{out}/{stations:02}-{name}.png")


def start():
    say("start")
    log = open(f"{out}/studio.log", "ab")
    studio = Window(f"{build}/app/tonewright-studio", out, log, COMMANDS)
    studio.wait("label", "Buffer information is not available yet. Load an image first.")
    return studio


def tool(*words):
    return run(f"{build}/cli/tonewright", *words, text=True)


def content(path):
    with open(path, "rb") as file:
        return file.read()


def expect_same(one, other):
    if content(one) != content(other):
        raise Missing(f"{one} equal to {other}")
    say(f"same: {os.path.basename(one)} {os.path.basename(other)}")


def save_coefficients(studio, name, *tool_words):
    """Saves them from the window and with the batch tool, and holds one against the other."""
    studio.ready()
    studio.key("ctrl+e")
    studio.name_file("Save As", f"{out}/{name}.ccor")
    until(lambda: os.path.exists(f"{out}/{name}.ccor"), f"{name}.ccor")
    tool("calibrate", chart, *tool_words, "--coefficients", f"{out}/{name}-tool.ccor")
    expect_same(f"{out}/{name}.ccor", f"{out}/{name}-tool.ccor")


def load_and_preview(studio):
    say("load, calibrate and preview")
    studio.key("ctrl+o")
    studio.name_file("Open Raw Image", chart)
    until(lambda: studio.find("label", "608 x 423 x 32-bit, FormatRgb", begins=True), "the chart's size")
    shoot(studio, "chart")
    studio.key("ctrl+p")
    studio.wait("frame", "Calibrated Image")
    until(lambda: studio.is_enabled("Save Image"), "a preview to save")
    studio.wait("frame", "Calibration Quality")  # shows itself with the first figures
    shoot(studio, "preview")


def gamma(studio):
    say("the preview follows the gamma slider")
    preview = studio.wait("frame", "Calibrated Image")
    before = studio.looks(preview)
    studio.command("Gamma Adjustment")
    studio.key("Tab", *["Right"] * 10, "Escape")  # which closes the panel that dropped down in a narrow window
    slider = until(lambda: studio.find("slider", "Gamma Adjustment", hidden=True), "the gamma slider")
    until(lambda: Atspi.Value.get_current_value(slider) == 55, "gamma 55")
    until(lambda: studio.looks(preview) != before, "another preview")
    shoot(studio, "gamma")
    studio.command("Gamma Adjustment")
    studio.key("ctrl+a")
    studio.type("45")
    studio.key("Return", "Escape")
    until(lambda: Atspi.Value.get_current_value(slider) == 45, "gamma 45")


def parameters(studio):
    say("save coefficients and parameters, reset, load")
    save_coefficients(studio, "absolute", "--corrected", f"{out}/corrected.bmp")
    studio.command("Save")
    studio.name_file("Save As", f"{out}/absolute.twkp")
    studio.command("Reset")
    answer_yes(studio, "Glyphix Parameter Reset")
    studio.command("Load")
    studio.name_file("Open", f"{out}/absolute.twkp")
    save_coefficients(studio, "again")
    expect_same(f"{out}/again.ccor", f"{out}/absolute.ccor")


def answer_yes(studio, caption):
    def question():
        return studio.find("alert", caption) or studio.find("dialog", caption)

    studio.click(studio.wait("push button", "Yes", begins=True, root=until(question, caption)))
    until(lambda: not question(), f'"{caption}" answered')
    studio.ready()


def relative(studio):
    say("relative calibration")
    studio.command("Relative")
    studio.name_file("Open Reference Image", f"{out}/corrected.bmp")
    studio.said("A reference image is needed in relative calibration mode.")
    shoot(studio, "relative")
    save_coefficients(studio, "relative", "--reference", f"{out}/corrected.bmp")


def users_illuminant(studio):
    say("a user's illuminant from a CSV file")
    white = ["0.83749", "0.88497", "0.92462"]
    values = f"{root}/tests/road/d65.csv"
    studio.command("Absolute")
    studio.choose("Illuminant Type", 0)
    table = studio.wait("table", "Illuminant Value")
    cells = [t for t in studio.things(table) if t.get_role_name() == "table cell"]
    studio.click(cells[-3], times=2)
    for number in white:
        studio.type(number)
        studio.key("Tab")
    studio.key("Escape")
    until(lambda: studio.cells("Illuminant Value")[-3:] == white, "the white's values")
    shoot(studio, "editing")
    studio.click(studio.wait("push button", "Load Values"))
    dialog = studio.dialog("Open")
    field = studio.wait("text", root=dialog)
    studio.key("ctrl+a")
    studio.type(values)
    until(lambda: Atspi.Text.get_text(field, 0, -1) == values, "the file's name typed")
    studio.key("Return")
    studio.dialog("Matrix Size")
    shoot(studio, "matrix-size")
    studio.key("Return")
    studio.closed("Matrix Size")
    first = content(values).decode().split("\n")[0].split(",")
    until(lambda: studio.cells("Spectrum Values")[1:4] == first, "the file's values")
    shoot(studio, "values")
    save_coefficients(studio, "user", "--illuminant", "user", "--values", values, "--white", ",".join(white))


def by_hand(studio):
    say("pick colors by hand")
    studio.choose("Color Selection", 1)
    viewer = studio.wait("frame", "Raw Image")
    studio.key("ctrl+Delete")
    until(lambda: not studio.cells("Raw colors"), "the lists cleared")
    for picked in (1, 2, 3):
        studio.click(viewer, times=2)
        until(lambda: len(studio.cells("Raw colors")) == picked, f"{picked} colors in the list")
    studio.wait("label", "next: 4 Foliage (3 of 24)")
    shoot(studio, "manual")
    studio.choose("Color Selection", 0)


def save_report(studio, name, begin):
    studio.command("Save Report")
    studio.name_file("Save As", f"{out}/{name}")
    studio.said(f"Report saved to {out}/{name}")
    if begin not in content(f"{out}/{name}"):
        raise Missing(f"{begin} in {name}")


def quality(studio):
    say("figures, before beside after, reports, another picture, the chart found")
    studio.choose("Illuminant Type", 4)
    studio.key("ctrl+p")
    answer_yes(studio, "Calibrate Preview")  # the saved coefficients are given up
    studio.command("Calibration Quality")
    until(lambda: not studio.find("frame", "Calibration Quality"), "the pane of figures closed")
    studio.command("Calibration Quality")
    studio.wait("frame", "Calibration Quality")
    shoot(studio, "quality")
    studio.command("Compare")
    viewers = [t for t in studio.things() if t.get_name() == "Calibrated Image" and t.get_role_name() == "frame"]
    shoot(studio, "compare")
    before = studio.looks(viewers[-1])
    studio.drag(viewers[-1], (0.5, 0.5), (0.3, 0.5))
    until(lambda: studio.looks(viewers[-1]) != before, "the divider slid")
    save_report(studio, "report.html", b"Calibration report")
    studio.command("Verify")
    studio.name_file("Verify on Another Picture", chart)
    studio.wait("push button", "Back to the Calibration")
    shoot(studio, "verified")
    save_report(studio, "verification.pdf", b"%PDF")
    studio.key("ctrl+1")  # the divider selected the calibrated viewer
    studio.command("Find Chart")
    studio.said("Find Chart: 24 patches found")
    until(lambda: len(studio.cells("Raw colors")) == 24, "24 colors, and not those picked before")
    shoot(studio, "found")


def simulated_devices(studio):
    say("the simulated frame grabber: snap, upload; the simulated camera: backup")
    studio.command("Configure")
    studio.dialog("Acquisition Configuration")
    shoot(studio, "configure")
    studio.key("Return")
    studio.closed("Acquisition Configuration")
    studio.command("Snap")
    until(lambda: studio.is_enabled("Calibrate and Preview"), "a picture to calibrate")
    shoot(studio, "snapped")
    studio.command("Upload Coefficients")
    studio.said("Finished successfully !")
    shoot(studio, "upload")
    studio.command("Configure")
    studio.dialog("Acquisition Configuration")
    studio.key("Down")
    until(lambda: studio.find("combo box", "Camera 1: Simulated_Camera_Link"), "the other device chosen")
    studio.key("Return")
    studio.closed("Acquisition Configuration")
    until(lambda: studio.is_enabled("Backup Coefficients"), "a camera to read")
    studio.command("Backup Coefficients")
    studio.name_file("Save As", f"{out}/backup.ccor")
    studio.said("Backup succeeded.")
    expect_same(f"{out}/backup.ccor", f"{out}/samples/simulated-camera/ColorCorrectionMatrix")


def color_features(studio):
    say("a camera with color transformation features: send, read back")
    studio.command("Load Coefficients")
    studio.name_file("Open", f"{out}/absolute.ccor")
    studio.said("was loaded successfully")
    studio.command("Configure")
    dialog = studio.dialog("Acquisition Configuration")
    studio.wait("combo box", f"Camera 1: Fake-{os.getpid()}", root=dialog)
    studio.key("Return")
    studio.closed("Acquisition Configuration")
    until(lambda: studio.is_enabled("Send Coefficients"), "a camera to send to")
    studio.command("Send Coefficients")
    studio.said("The camera's color transformation features hold the coefficients and are in force.")
    studio.said("Finished successfully !")
    shoot(studio, "sent")
    studio.command("Read Coefficients")
    studio.name_file("Save As", f"{out}/read.ccor")
    studio.said("The coefficients of the camera were saved.")
    expect_same(f"{out}/read.ccor", f"{out}/absolute.ccor")
    shoot(studio, "read")


def fake_camera():
    """The machine's one camera on the loopback network, under the lock that all who start one take."""
    lock = open("/tmp/fake-gige-camera.lock", "a")
    fcntl.flock(lock, fcntl.LOCK_EX)
    with open(f"{out}/camera.xml", "w", encoding="ascii") as file:
        file.write(run(f"{build}/tests/road_camera", text=True))
    words = ["arv-fake-gv-camera-0.8", "-i", "127.0.0.1", "-s", str(os.getpid()), "-g", f"{out}/camera.xml"]
    return subprocess.Popen(words, stdout=subprocess.DEVNULL), lock


def walk(stations_of_it):
    studio = start()
    try:
        for station in stations_of_it:
            station(studio)
        studio.close()
    except Exception:
        shoot(studio, "failed")
        raise
    finally:
        studio.process.kill()
        studio.process.wait()


def main():
    os.environ["ZVN_SIMULATION"] = f"{out}/samples/simulation.ini"
    walk([load_and_preview, gamma, parameters, relative, users_illuminant, by_hand, quality, simulated_devices])
    del os.environ["ZVN_SIMULATION"]
    camera, lock = fake_camera()
    try:
        walk([color_features])
    finally:
        camera.kill()
        camera.wait()
        lock.close()


try:
    main()
except Exception as failure:
    say(f"FAILED: {'not seen: ' if isinstance(failure, Missing) else ''}{failure}")
    traceback.print_exc()
    sys.exit(1)
