"""Reads a program's windows over the accessibility bus (AT-SPI 2), as a screen reader does."""

import json, os, shutil, subprocess, sys, tempfile, warnings

import desktop

BUS = "TESSEL_ACCESSIBILITY_BUS"  # set inside the bus that this program starts


def bare(label):
    return label.strip().rstrip(":.").strip()


class Tree:
    """The program's windows on the bus."""

    def __init__(self, atspi):
        self.atspi = atspi

    def all(self):
        def walk(item):
            if item is None:
                return
            yield item
            if item.get_role_name() == "list":
                return  # the items of a popup
            for index in range(item.get_child_count()):
                yield from walk(item.get_child_at_index(index))

        root = self.atspi.get_desktop(0)
        for index in range(root.get_child_count()):
            yield from walk(root.get_child_at_index(index))

    def has(self, item, state):
        return item.get_state_set().contains(getattr(self.atspi.StateType, state))

    def labels_of(self, item):
        for relation in item.get_relation_set():
            if relation.get_relation_type() == self.atspi.RelationType.LABELLED_BY:
                return [bare(relation.get_target(index).get_name()) for index in range(relation.get_n_targets())]
        return []

    def heard(self, item):
        """(role, name, value, enabled) of a control."""
        role, name, enabled = item.get_role_name(), item.get_name(), self.has(item, "ENABLED")
        if role == "combo box":  # its name is what is chosen
            return role, (self.labels_of(item) or [""])[0], name, enabled
        if role == "text":
            return role, name, self.atspi.Text.get_text(item, 0, -1), enabled
        if role in ("check box", "radio button"):
            return role, name, self.has(item, "CHECKED"), enabled
        if role == "label":
            return role, name, item.get_description(), enabled
        return role, name, "", enabled

    def act(self, item, name):
        """Does the action of that name: "Press", "Toggle"."""
        names = [item.get_action_name(index) for index in range(item.get_n_actions())]
        if name not in names:
            raise desktop.Failure(f"{item.get_role_name()} {item.get_name()} can only {names}")
        item.do_action(names.index(name))

    def find(self, role, name):
        return next((item for item in self.all() if self.heard(item)[:2] == (role, name)), None)


def started(command, display, folder, **variables):
    """A program whose windows are on a display and on the bus, as `desktop.started` has it."""
    environment = dict(desktop.environment_of(display, folder), QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", **variables)
    return desktop.started(command, environment, folder)


def enter_bus(xvfb):
    """Runs this program anew on a bus of its own; there, gives the bus's module. None: something is missing."""
    try:
        import gi
        gi.require_version("Atspi", "2.0")
        from gi.repository import Atspi
    except (ImportError, ValueError):
        print("skipped: the Python module of the accessibility bus is not installed")
        return None
    if shutil.which("dbus-run-session") is None or not os.path.exists(xvfb):
        print("skipped: dbus-run-session or Xvfb is not installed")
        return None
    if BUS not in os.environ:
        os.environ[BUS] = "1"
        os.execvp("dbus-run-session", ["dbus-run-session", "--", sys.executable, "-B", *sys.argv])
    warnings.simplefilter("ignore", DeprecationWarning)  # of interfaces that newer versions reach otherwise
    return Atspi


def run(usage, document, check):
    """A test's main function: calls check(tessel, folder, clip, display, atspi) with a clip of that document.
    Returns the exit code."""
    if len(sys.argv) != 3:
        sys.exit(usage)
    atspi = enter_bus(sys.argv[2])
    if atspi is None:
        return 77
    with tempfile.TemporaryDirectory() as folder:
        clip = os.path.join(folder, "clip.tessel")
        with open(clip, "w", encoding="utf-8") as file:
            json.dump(document, file)
        screen = desktop.Screen(sys.argv[2], folder)
        try:
            check(os.path.abspath(sys.argv[1]), folder, clip, screen.display, atspi)
        except (desktop.Failure, subprocess.SubprocessError) as failure:
            print("failed:", failure)
            return 1
        finally:
            screen.close()
    return 0
