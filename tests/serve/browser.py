"""A browser without a screen, driven through its own driver over the loopback."""
import base64
import http.client
import json
import os
import re
import shutil
import subprocess
import tempfile
import time

# Machines may be slow; nothing waits longer than it must.
PATIENCE = 120
ELEMENT = "element-6066-11e4-a52e-4f735466cecf"
FLAGS = [
    "--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
    "--disable-background-networking", "--disable-component-update", "--disable-sync",
    "--disable-dev-shm-usage", "--disable-extensions", "--disable-default-apps",
    "--force-device-scale-factor=1", "--window-size=1600,1000",
]


def missing():
    """The first of the programs that are not installed; none where all are."""
    for names in (("chromium", "chromium-browser"), ("chromedriver",)):
        if not any(shutil.which(name) for name in names):
            return names[0]
    return None


def wait_until(what, holds):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        found = holds()
        if found:
            return found
        time.sleep(0.02)
    raise AssertionError(f"in vain waited until {what}")


class Browser:
    def __enter__(self):
        self.folder = tempfile.mkdtemp(prefix="velka-browser-")
        environment = dict(os.environ, HOME=self.folder, TMPDIR=self.folder)
        self.driver = subprocess.Popen(
            [shutil.which("chromedriver"), "--port=0"], stdout=subprocess.PIPE, text=True,
            stderr=subprocess.DEVNULL, env=environment)
        self.port = None
        for line in self.driver.stdout:
            found = re.search(r"successfully on port (\d+)", line)
            if found:
                self.port = int(found[1])
                break
        assert self.port, "chromedriver does not start"
        binary = shutil.which("chromium") or shutil.which("chromium-browser")
        options = {"binary": binary, "args": FLAGS + [f"--user-data-dir={self.folder}/profile"]}
        self.session = None
        self.session = self.ask("POST", "/session", {"capabilities": {"alwaysMatch": {
            "browserName": "chrome", "goog:chromeOptions": options,
            "goog:loggingPrefs": {"browser": "ALL"}}}})["sessionId"]
        return self

    def __exit__(self, *_):
        try:
            self.ask("DELETE", "")
        finally:
            self.driver.terminate()
            self.driver.wait()
            self.driver.stdout.close()
            shutil.rmtree(self.folder, ignore_errors=True)

    def ask(self, method, path, body=None):
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=PATIENCE)
        whole = path if self.session is None else f"/session/{self.session}{path}"
        content = None if body is None else json.dumps(body)
        connection.request(method, whole, content, {"Content-Type": "application/json"})
        answer = json.loads(connection.getresponse().read())["value"]
        connection.close()
        if isinstance(answer, dict) and "error" in answer:
            raise AssertionError(f"{path}: {answer['error']}: {answer['message'].splitlines()[0]}")
        return answer

    def open(self, address):
        self.ask("POST", "/url", {"url": address})

    def run(self, script, *arguments):
        return self.ask("POST", "/execute/sync", {"script": script, "args": list(arguments)})

    def find(self, selector):
        found = self.ask("POST", "/element", {"using": "css selector", "value": selector})
        return found[ELEMENT]

    def click(self, selector):
        self.ask("POST", f"/element/{self.find(selector)}/click", {})

    def press(self, selector, keys):
        self.ask("POST", f"/element/{self.find(selector)}/value", {"text": keys})

    def click_at(self, x, y):
        """In pixels of the page."""
        moves = [{"type": "pointerMove", "duration": 0, "x": round(x), "y": round(y)},
                 {"type": "pointerDown", "button": 0}, {"type": "pointerUp", "button": 0}]
        self.ask("POST", "/actions", {"actions": [
            {"type": "pointer", "id": "mouse", "parameters": {"pointerType": "mouse"},
             "actions": moves}]})

    def new_tab(self):
        handle = self.ask("POST", "/window/new", {"type": "tab"})["handle"]
        self.use_tab(handle)
        return handle

    def tab(self):
        return self.ask("GET", "/window")

    def use_tab(self, handle):
        self.ask("POST", "/window", {"handle": handle})

    def screenshot(self, name):
        with open(name, "wb") as file:
            file.write(base64.b64decode(self.ask("GET", "/screenshot")))

    def complaints(self):
        """What the browser has against the page; that its pixels are read is this test's."""
        return [entry["message"] for entry in self.ask("POST", "/se/log", {"type": "browser"})
                if entry["level"] in ("SEVERE", "WARNING") and "Canvas2D" not in entry["message"]]

    def text(self, selector):
        return self.run("return document.querySelector(arguments[0])?.textContent ?? ''", selector)

    def data(self, selector, name):
        return self.run("return document.querySelector(arguments[0])?.dataset[arguments[1]] ?? ''",
                        selector, name)

    def canvas(self, selector, left, top, width, height):
        """Red, green and blue of its pixels, row after row."""
        text = self.run(
            "const [selector, x, y, w, h] = arguments;"
            "const canvas = document.querySelector(selector);"
            "const bytes = canvas.getContext('2d').getImageData(x, y, w, h).data;"
            "let text = '';"
            "for (let i = 0; i < bytes.length; i += 32768)"
            "  text += String.fromCharCode(...bytes.subarray(i, i + 32768));"
            "return btoa(text);", selector, left, top, width, height)
        rgba = base64.b64decode(text)
        rows = [rgba[i:i + 4 * width] for i in range(0, len(rgba), 4 * width)]
        return [b"".join(row[i:i + 3] for i in range(0, len(row), 4)) for row in rows]
