"""A screen of our own with a person in front of it: what the tests, benchmarks and screenshots of real windows share."""

import contextlib, json, mmap, os, re, struct, subprocess, sys, time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))

from document_values import code, color  # noqa: E402

TITLE = "Tessel Settings"
ACCENT = 0x1F6FC4      # the default button
ACCENT_INK = 0x6FB1F2  # hot text in the dark theme
STEP_LIMIT = 40.0      # seconds that one step may take; machines are slow under load


class Failure(Exception):
    pass


def wait_for(what, ask):
    """Asks again and again until the answer is true."""
    end = time.monotonic() + STEP_LIMIT
    while time.monotonic() < end:
        answer = ask()
        if answer:
            return answer
        time.sleep(0.05)
    raise Failure(f"waited in vain for {what}")


class Screen:
    """An X server of our own and what it shows."""

    def __init__(self, xvfb, folder, size="1600x1200"):
        read_end, write_end = os.pipe()
        self.process = subprocess.Popen(
            [xvfb, "-displayfd", str(write_end), "-screen", "0", size + "x24", "-nolisten", "tcp", "-noreset", "-fbdir",
             folder],
            pass_fds=(write_end,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as numbers:
            number = numbers.readline().strip()
        if not number:
            raise Failure("the X server did not start")
        self.display = ":" + number
        self.file = os.path.join(folder, "Xvfb_screen0")

    def close(self):
        self.process.terminate()
        self.process.wait()

    def runs(self, colour, least):
        """Horizontal runs of at least `least` pixels of a colour: (x, y, length), from the top."""
        with open(self.file, "rb") as file, mmap.mmap(file.fileno(), 0, prot=mmap.PROT_READ) as image:
            # An X window dump: 32-bit big-endian words; size of the header, width, height, bytes a row, colours.
            words = struct.unpack(">25I", image[:100])
            width, height, row_bytes = words[4], words[5], words[12]
            start = words[0] + words[19] * 12
            channels = colour.to_bytes(3, "little" if words[7] == 0 else "big")
            # The fourth byte of a pixel may be anything.
            pixel = re.escape(channels) + b"." if words[7] == 0 else b"." + re.escape(channels)
            pattern = re.compile(b"(?:%s){%d,}" % (pixel, least), re.DOTALL)
            found = []
            for y in range(height):
                row = image[start + y * row_bytes:start + y * row_bytes + 4 * width]
                found += [(run.start() // 4, y, len(run.group()) // 4) for run in pattern.finditer(row)
                          if run.start() % 4 == 0]
            return found


class Person:
    def __init__(self, xdotool, display):
        self.xdotool = xdotool
        self.environment = dict(os.environ, DISPLAY=display)

    def do(self, *words):
        return subprocess.run([self.xdotool, *words], env=self.environment, capture_output=True, text=True,
                              timeout=STEP_LIMIT)

    def window(self, name):
        """The window of that title, with the keyboard in it; there is no window manager to do that."""
        found = wait_for(f"the window {name}",
                         lambda: self.do("search", "--onlyvisible", "--name", f"^{name}$").stdout.split())[-1]
        wait_for("the focus", lambda: self.do("windowfocus", found).returncode == 0
                 and self.do("getwindowfocus").stdout.strip() == found)
        time.sleep(0.3)  # Qt hears of the focus a moment later
        return found

    def gone(self, window):
        wait_for("the window to close", lambda: window not in self.do("search", "--onlyvisible", "--name", ".").stdout
                 .split())

    def key(self, *keys):
        done = self.do("key", "--delay", "40", *keys)
        if done.returncode != 0:
            raise Failure(done.stderr)

    def type(self, text):
        self.do("type", "--delay", "20", "--", text)

    def click(self, x, y):
        self.do("mousemove", str(x), str(y))
        time.sleep(0.1)
        self.do("click", "1")

    def drag(self, x, y, pixels):
        self.do("mousemove", str(x), str(y), "mousedown", "1")
        for step in range(1, pixels // 4 + 1):
            self.do("mousemove", str(x + 4 * step), str(y))
        self.do("mouseup", "1")


def document():
    """Field colours; the first one has an alpha that picking must not touch."""
    colors = ("mLowerFieldColor", "mTopGradiantColorStart", "mTopGradiantColorEnd", "mBottomGradiantColorStart",
              "mBottomGradiantColorEnd")
    return {"mVersion": 1, "mPixelFormat": code("bgra"), "mFrameWidth": 720,
            "mFrameHeight": 480, "mFramePAR": {"numerator": 1, "denominator": 1}, "mFieldType": 0,
            "mRenderFormat": 0, "mUpperFieldColor": color(1.0, 0.5, 0.25, 0.5),
            **{name: color(0.5, 0.5, 0.5) for name in colors},
            "mVideoDuration": {"ticks": 60 * 254016000000}, "mVideoFrameRate": {"ticksperframe": 8467200000}}


def dumped_controls(tessel, folder, clip):
    """The controls of a clip's dialog in reading order, as the command `dump` writes them; no window is opened."""
    script = os.path.join(folder, "dump.script")
    with open(script, "w", encoding="utf-8") as file:
        file.write('dump "state.json"\npress cancelButton\n')
    subprocess.run([tessel, "edit", clip, "--script", script], cwd=folder, check=True,
                   env=dict(os.environ, KESTREL_UI="scripted"))
    with open(os.path.join(folder, "state.json"), encoding="utf-8") as file:
        return json.load(file)


def environment_of(display, folder):
    """The variables of a program that opens windows on a display, without those of the caller that change windows."""
    environment = {key: value for key, value in os.environ.items() if not key.startswith(("QT_", "KESTREL_"))}
    environment.pop("WAYLAND_DISPLAY", None)
    environment.update(DISPLAY=display, QT_QPA_PLATFORM="xcb", HOME=folder)
    return environment


@contextlib.contextmanager
def started(command, environment, folder):
    """A program that is running; killed at the end, and what it printed is shown where the test failed."""
    program = subprocess.Popen(command, cwd=folder, env=environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                               text=True)
    try:
        yield program
    except (Failure, subprocess.SubprocessError):
        program.kill()
        print("the program printed:", *program.communicate())
        raise
    finally:
        program.kill()
        program.communicate()


def dialog(tessel, folder, clip, display):
    """The settings dialog of a clip, `started`."""
    environment = dict(environment_of(display, folder), KESTREL_UI="qt")
    return started([tessel, "edit", clip], environment, folder)


def finish(program):
    out, errors = program.communicate(timeout=STEP_LIMIT)
    if program.returncode != 0 or errors:
        raise Failure(f"exit code {program.returncode}, standard error: {errors}")
    return out


def expect(what, actual, wanted):
    if actual != wanted:
        raise Failure(f"{what} is {actual!r}, not {wanted!r}")
