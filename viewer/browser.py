"""A headless Chromium that opens pages from disk, by its DevTools protocol: what tests and pictures are made with."""

import base64
import json
import os
import shutil
import subprocess
import tempfile
import time
from pathlib import Path

import websocket  # Debian's python3-websocket

PATIENCE = 240  # seconds; drawing in software on a busy machine takes its time
FLAGS = ["--headless=new", "--no-sandbox", "--use-gl=angle", "--use-angle=swiftshader", "--enable-unsafe-swiftshader",
         "--ignore-gpu-blocklist", "--disable-dev-shm-usage", "--no-first-run", "--disable-background-networking",
         "--disable-component-update", "--disable-default-apps", "--disable-sync", "--disable-extensions", "--mute-audio",
         "--hide-scrollbars", "--force-color-profile=srgb", "--font-render-hinting=none", "--remote-debugging-port=0",
         "--disable-features=IsolateSandboxedIframes", "about:blank"]


def executable():
    return next(filter(None, map(shutil.which, ("chromium", "chromium-browser", "google-chrome"))), None)


class Browser:
    """One page at a time. What it says on the console as an error, and what it fails at, is in `faults`."""

    def __init__(self, width=800, height=600, dark=False, scale=1):
        self.folder = tempfile.mkdtemp(prefix="tessary-browser-")
        self.process = subprocess.Popen([executable(), *FLAGS, f"--user-data-dir={self.folder}"],
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.faults, self.requests, self.last = [], [], 0
        self.socket = websocket.create_connection(self._address(), timeout=PATIENCE, suppress_origin=True)
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.call(domain + ".enable")
        self.resize(width, height, scale)
        self.prefer(dark)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        try:
            self.call("Browser.close")
        except (OSError, websocket.WebSocketException, RuntimeError):
            self.process.kill()
        self.process.wait(60)
        shutil.rmtree(self.folder, ignore_errors=True)

    def _address(self):
        from urllib.request import urlopen
        port_file, end = Path(self.folder, "DevToolsActivePort"), time.monotonic() + PATIENCE
        while time.monotonic() < end and self.process.poll() is None:
            if port_file.exists() and len(lines := port_file.read_text().split()) == 2:
                with urlopen(f"http://127.0.0.1:{lines[0]}/json/list") as answer:
                    pages = [target for target in json.load(answer) if target["type"] == "page"]
                if pages:
                    return pages[0]["webSocketDebuggerUrl"]
            time.sleep(0.05)
        raise RuntimeError("Chromium does not start")

    def call(self, method, **parameters):
        self.last += 1
        self.socket.send(json.dumps({"id": self.last, "method": method, "params": parameters}))
        while True:
            message = json.loads(self.socket.recv())
            if message.get("id") == self.last:
                if "error" in message:
                    raise RuntimeError(f"{method}: {message['error']['message']}")
                return message["result"]
            self._note(message)

    def _note(self, message):
        method, what = message.get("method"), message.get("params", {})
        if method == "Runtime.exceptionThrown":
            details = what["exceptionDetails"]
            self.faults.append(details.get("exception", {}).get("description") or details["text"])
        elif method == "Runtime.consoleAPICalled" and what["type"] in ("error", "assert"):
            self.faults.append(" ".join(str(one.get("value", one.get("description"))) for one in what["args"]))
        elif method == "Log.entryAdded" and what["entry"]["level"] == "error":
            self.faults.append(what["entry"]["text"])
        elif method == "Network.requestWillBeSent":
            self.requests.append(what["request"]["url"][:200])

    def resize(self, width, height, scale=1):
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=scale, mobile=False)

    def prefer(self, dark):
        self.call("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"},
                                                          {"name": "prefers-reduced-motion", "value": "reduce"}])

    def run(self, script):
        """The value of an expression in the page; promises are awaited."""
        answer = self.call("Runtime.evaluate", expression=script, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in answer:
            raise RuntimeError(answer["exceptionDetails"].get("exception", {}).get("description", "script failed"))
        return answer["result"].get("value")

    def wait_for(self, condition):
        end = time.monotonic() + PATIENCE
        while not (value := self.run(condition)):
            if time.monotonic() > end:
                raise RuntimeError(f"waited {PATIENCE} s for {condition}; {self.faults}")
            time.sleep(0.05)
        return value

    def wait_for_frame(self, condition):
        """A function that evaluates expressions in the page's only frame, once the condition holds there."""
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            frames = self.call("Page.getFrameTree")["frameTree"].get("childFrames", [])
            if frames:
                world = self.call("Page.createIsolatedWorld", frameId=frames[0]["frame"]["id"])["executionContextId"]
                evaluate = lambda text: self.call("Runtime.evaluate", expression=text, contextId=world,
                                                  returnByValue=True)["result"].get("value")
                if evaluate(condition):
                    return evaluate
            time.sleep(0.1)
        raise RuntimeError(f"waited {PATIENCE} s for {condition} in a frame; {self.faults}")

    def open(self, page, **view):
        """Opens a page from disk, with what it should show first (see viewer/state.js), and waits until it has drawn."""
        from urllib.parse import urlencode
        self.faults.clear()
        self.requests.clear()
        self.call("Page.navigate", url="about:blank")
        self.wait_for("location.href === 'about:blank'")
        self.call("Page.navigate", url=Path(page).resolve().as_uri() + ("#" + urlencode(view) if view else ""))
        self.wait_for("document.documentElement?.dataset.ready || ''")
        self.settle()

    def settle(self):
        """Two frames further on, so that what was asked for is drawn."""
        self.run("new Promise(done => requestAnimationFrame(() => requestAnimationFrame(() => done(true))))")

    def screenshot(self):
        """The window as the bytes of a PNG file."""
        return base64.b64decode(self.call("Page.captureScreenshot", format="png")["data"])

    def mouse(self, kind, x, y, button="none", clicks=0):
        self.call("Input.dispatchMouseEvent", type=kind, x=x, y=y, button=button, clickCount=clicks,
                  buttons=1 if button == "left" and kind != "mouseReleased" else 0)

    def hover(self, x, y):
        self.mouse("mouseMoved", x, y)
        self.settle()

    def click(self, x, y):
        self.mouse("mouseMoved", x, y)
        self.mouse("mousePressed", x, y, "left", 1)
        self.mouse("mouseReleased", x, y, "left", 1)
        self.settle()

    def key(self, key):
        self.call("Input.dispatchKeyEvent", type="keyDown", key=key, text=key if len(key) == 1 else "")
        self.call("Input.dispatchKeyEvent", type="keyUp", key=key)
        self.settle()


def available():
    return executable() is not None and os.name == "posix"
