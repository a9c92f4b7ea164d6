"""A browser for tests: Debian's chromium-headless-shell, driven by its debugging protocol through a
pair of pipes. Needs nothing but Python.

SPDX-License-Identifier: MIT
"""

import base64
import json
import os
import re
import select
import shutil
import signal
import subprocess
import tempfile
import time

PROGRAM = shutil.which("chromium-headless-shell")
# Bounds every wait; its passing fails the case.
LONGEST_WAIT = 120
# What the browser says about an expression in a page that it has left meanwhile.
LEFT = re.compile("context was destroyed|Cannot find default execution|navigated or closed")


class BrowserError(AssertionError):
    """The browser refused a command or has ended."""


class Chromium:
    """A running browser without a profile of the user."""

    def __init__(self):
        self.profile = tempfile.TemporaryDirectory(prefix="rgen-chromium-",
                                                   ignore_cleanup_errors=True)
        command_reader, self.writer = os.pipe()
        self.reader, answer_writer = os.pipe()
        arguments = [PROGRAM, "--remote-debugging-pipe", "--no-sandbox", "--no-first-run",
                     "--disable-gpu", "--disable-dev-shm-usage", "--hide-scrollbars",
                     f"--user-data-dir={self.profile.name}", "about:blank"]
        # The browser reads commands from descriptor 3 and writes to 4. Both pipes are first moved out
        # of the way of these numbers.
        script = ('exec 30<&"$1" 31>&"$2"; exec 3<&30 4>&31 30<&- 31>&-; shift 2; exec "$@"')
        self.process = subprocess.Popen(
            ["bash", "-c", script, "bash", str(command_reader), str(answer_writer), *arguments],
            pass_fds=(command_reader, answer_writer), stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
        os.close(command_reader)
        os.close(answer_writer)
        self.buffer = b""
        self.number = 0
        self.events = []

    def close(self):
        os.killpg(self.process.pid, signal.SIGKILL)
        self.process.wait()
        os.close(self.writer)
        os.close(self.reader)
        self.profile.cleanup()

    def receive(self, limit):
        """The next message; messages end with a zero byte."""
        while b"\0" not in self.buffer:
            if not select.select([self.reader], [], [], max(0, limit - time.monotonic()))[0]:
                raise BrowserError("the browser does not answer")
            chunk = os.read(self.reader, 1 << 20)
            if not chunk:
                raise BrowserError("the browser has ended")
            self.buffer += chunk
        message, self.buffer = self.buffer.split(b"\0", 1)
        return json.loads(message)

    def send(self, method, session=None, **parameters):
        """Sends a command and returns its result."""
        self.number += 1
        command = {"id": self.number, "method": method, "params": parameters}
        if session:
            command["sessionId"] = session
        os.write(self.writer, json.dumps(command).encode() + b"\0")
        limit = time.monotonic() + LONGEST_WAIT
        while True:
            message = self.receive(limit)
            if message.get("id") == self.number:
                if "error" in message:
                    raise BrowserError(f"{method}: {message['error']['message']}")
                return message["result"]
            self.events.append(message)

    def open(self, address, width=1100, height=800):
        """A new tab with this address."""
        target = self.send("Target.createTarget", url="about:blank", width=width,
                           height=height)["targetId"]
        session = self.send("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        tab = Tab(self, target, session)
        for domain in ("Page", "Runtime", "Log", "Network"):
            tab.send(f"{domain}.enable")
        tab.send("Page.navigate", url=address)
        return tab


class Tab:
    def __init__(self, browser, target, session):
        self.browser = browser
        self.target = target
        self.session = session

    def close(self):
        self.browser.send("Target.closeTarget", targetId=self.target)

    def send(self, method, **parameters):
        return self.browser.send(method, self.session, **parameters)

    def run(self, expression):
        """The value of a JavaScript expression, awaited if it is a promise."""
        result = self.send("Runtime.evaluate", expression=expression, awaitPromise=True,
                           returnByValue=True, userGesture=True)
        if "exceptionDetails" in result:
            raise BrowserError(f"{expression}: {result['exceptionDetails']}")
        return result["result"].get("value")

    def wait_until(self, condition):
        """Waits until a JavaScript expression is true. A page that is being left ends the wait
        inside it, so it is begun again."""
        waiting = ("new Promise((resolve) => { const look = () => { let is = false; "
                   f"try {{ is = Boolean({condition}); }} catch (error) {{ is = false; }} "
                   "if (is) resolve(true); else setTimeout(look, 5); }; look();"
                   " setTimeout(() => resolve(false), 1000); })")
        limit = time.monotonic() + LONGEST_WAIT
        while time.monotonic() < limit:
            try:
                if self.run(waiting):
                    return
            except BrowserError as error:
                if not LEFT.search(str(error)):
                    raise
        raise BrowserError(f"never true: {condition}")

    def click(self, x, y):
        for kind in ("mousePressed", "mouseReleased"):
            self.send("Input.dispatchMouseEvent", type=kind, x=x, y=y, button="left", clickCount=1)

    def problems(self):
        """What the browser has logged, such as something that a policy refused."""
        self.run("1")
        return [event["params"]["entry"]["text"] for event in self.browser.events
                if event["method"] == "Log.entryAdded"]

    def requested(self):
        """The addresses that the tab has asked for."""
        self.run("1")
        return [event["params"]["request"]["url"] for event in self.browser.events
                if event["method"] == "Network.requestWillBeSent"]

    def picture(self):
        return base64.b64decode(self.send("Page.captureScreenshot", format="png")["data"])
