"""velkaview --serve as a process, and what it is asked without a browser."""
import http.client
import os
import select
import subprocess
import urllib.parse


class Service:
    def __init__(self, program, *arguments):
        self.process = subprocess.Popen([program, "--serve", *arguments],
                                        stdout=subprocess.PIPE, text=True)
        ready, _, _ = select.select([self.process.stdout], [], [], 120)
        self.address = self.process.stdout.readline().strip() if ready else ""
        assert self.address.startswith("http://127.0.0.1:"), f"no address: {self.address}"
        parts = urllib.parse.urlsplit(self.address)
        self.port, self.path = parts.port, parts.path

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.end()

    def end(self, signal=15):
        if self.process.poll() is None:
            self.process.send_signal(signal)
        status = self.process.wait(120)
        self.process.stdout.close()
        return status

    def ask(self, path, headers=None, method="GET", host=None, body=None):
        """Status and body of the answer for a path behind the secret, or a whole one."""
        whole = path if path.startswith("/") else self.path + path
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=120)
        connection.putrequest(method, whole, skip_host=True)
        for each in [host or f"127.0.0.1:{self.port}"] if not isinstance(host, list) else host:
            connection.putheader("Host", each)
        for name, value in (headers or {}).items():
            connection.putheader(name, value)
        connection.endheaders(body)
        answer = connection.getresponse()
        content = answer.read()
        connection.close()
        return answer.status, content


def picture(program, folder, document, ppd, *arguments):
    """What velkaview itself draws of the document."""
    name = os.path.join(folder, "picture.png")
    subprocess.run([program, "--from", document, "--ppd", ppd, "-o", name, "--page", "1",
                    *arguments], check=True, stderr=subprocess.DEVNULL)
    return name
