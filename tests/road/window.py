"""A program's window as a person meets it: keys, the mouse, and what can be seen.

Where things are and what they say is asked of the program through the desktop's accessibility interface, so that the
road is the same at any window size. Nothing waits for a time: each wait is for a fact, and fails by name.
"""
import hashlib
import subprocess
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

PATIENCE = 60  # seconds


class Missing(Exception):
    pass


def run(*words, check=True, **options):
    return subprocess.run(words, check=check, timeout=PATIENCE, stdout=subprocess.PIPE, **options).stdout


def until(fact, what):
    """Waits until the fact is there, and returns it."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        try:
            found = fact()
            if found:
                return found
        except GLib.Error:  # what was looked at has just gone
            pass
        time.sleep(0.1)
    raise Missing(what)


def has(thing, *states):
    kept = thing.get_state_set()
    return all(kept.contains(state) for state in states)


class Window:
    def __init__(self, command, folder, log, commands):
        self.commands = commands
        self.process = subprocess.Popen([command], cwd=folder, stdout=log, stderr=log)
        self.app = until(self._find_app, "the program's window")
        self.app.set_cache_mask(Atspi.Cache.NONE)
        self.main = until(lambda: self.find("frame"), "the main window")
        run("xdotool", "windowactivate", "--sync", until(self._windows, "the main window's number")[-1].decode())

    def _find_app(self):
        if self.process.poll() is not None:
            raise Missing(f"the program, which ended with {self.process.returncode}")
        desktop = Atspi.get_desktop(0)
        apps = [desktop.get_child_at_index(i) for i in range(desktop.get_child_count())]
        return next((app for app in apps if app and app.get_process_id() == self.process.pid), None)

    # What can be seen.

    def things(self, root=None, hidden=False):
        """All that is on show, the newest windows first."""
        root = root or self.app
        children = [root.get_child_at_index(i) for i in range(root.get_child_count())]
        for child in reversed(children) if root == self.app else children:
            if child and (hidden or has(child, Atspi.StateType.SHOWING)):
                yield child
                yield from self.things(child, hidden)

    def find(self, role, name=None, begins=False, root=None, hidden=False):
        for thing in self.things(root, hidden):
            if thing.get_role_name() != role:
                continue
            if name is None or thing.get_name() == name or (begins and thing.get_name().startswith(name)):
                return thing
        return None

    def wait(self, role, name=None, begins=False, root=None):
        return until(lambda: self.find(role, name, begins, root), f'{role} "{name}"')

    def cells(self, table):
        things = self.things(self.wait("table", table), hidden=True)
        return [thing.get_name() for thing in things if thing.get_role_name() == "table cell"]

    def said(self, words):
        """Waits until the log has the words."""
        until(lambda: any(words in cell for cell in self.cells("Logs")), f'"{words}" in the log')

    def is_enabled(self, name):
        button = self.find("push button", name, hidden=True)
        return button and has(button, Atspi.StateType.SENSITIVE)

    def area(self, thing):
        e = thing.get_extents(Atspi.CoordType.SCREEN)
        return e.x, e.y, e.width, e.height

    def looks(self, thing):
        """A sum over the pixels of a thing, to tell that they changed."""
        x, y, width, height = self.area(thing)
        pixels = run("import", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "rgb:-")
        return hashlib.md5(pixels).hexdigest()

    def shoot(self, path):
        run("import", "-window", "root", path)

    # What a person does.

    def ready(self):
        """Waits until the main window takes the keys."""
        until(lambda: has(self.main, Atspi.StateType.ACTIVE), "the main window in front")

    def key(self, *keys):
        run("xdotool", "key", "--clearmodifiers", *keys)

    def type(self, text):
        run("xdotool", "type", "--clearmodifiers", "--delay", "5", text)

    def command(self, name):
        """Key tips: the tab, the panel where the window is too narrow to show what is in it, the control."""
        tab, panel, panel_letters, letters = self.commands[name]
        self.ready()
        self.key("Alt_L", tab[0].lower())
        self.wait("page tab list", tab)  # named as the tab in front
        is_folded = self.find("push button", panel) is not None
        self.key(*(panel_letters if is_folded else ""), *letters)

    def click(self, thing, times=1, at=(0.5, 0.5)):
        x, y, width, height = self.area(thing)
        place = str(x + int(width * at[0])), str(y + int(height * at[1]))
        run("xdotool", "mousemove", *place, "click", "--repeat", str(times), "--delay", "60", "1")

    def drag(self, thing, start, end):
        x, y, width, height = self.area(thing)
        places = [(str(x + int(width * a)), str(y + int(height * b))) for a, b in (start, end)]
        run("xdotool", "mousemove", *places[0], "mousedown", "1", "mousemove", *places[1], "mouseup", "1")

    def _windows(self):
        return run("xdotool", "search", "--onlyvisible", "--pid", str(self.process.pid), check=False).split()

    def choose(self, name, entry):
        """Opens a menu and takes an entry, the first of which is 0."""
        self.ready()
        before = len(self._windows())
        self.command(name)
        until(lambda: len(self._windows()) > before, f"the menu {name}")
        self.key("Down", "Home", *["Down"] * entry, "Return")
        until(lambda: len(self._windows()) == before, "the menu closed")

    def dialog(self, title):
        found = self.wait("dialog", title)
        until(lambda: has(found, Atspi.StateType.ACTIVE), f'"{title}" in front')
        return found

    def name_file(self, title, path):
        """Answers a file dialog."""
        dialog = self.dialog(title)
        field = self.wait("text", root=dialog)
        self.key("ctrl+a")
        self.type(path)
        until(lambda: Atspi.Text.get_text(field, 0, -1) == path, f'"{path}" typed')
        self.key("Return")
        self.closed(title)

    def closed(self, title):
        until(lambda: not self.find("dialog", title), f'"{title}" closed')
        self.ready()

    def close(self):
        """Closes the window, and waits for the program's end."""
        self.ready()
        self.key("alt+F4")
        self.process.wait(PATIENCE)
        if self.process.returncode != 0:
            raise Missing(f"a good end: the program ended with {self.process.returncode}")
