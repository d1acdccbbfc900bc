#!/usr/bin/env python3
"""check-door.py VELKAVIEW PPD-FOLDER: who is let in by velkaview --serve, and what is refused."""
import concurrent.futures
import json
import os
import socket
import sys
import tempfile

import pictures
import service

PROGRAM, PPDS = sys.argv[1:3]
PPD = os.path.join(PPDS, "velka-standard.ppd")
LOOK = "dpi=60&x=0&y=0&w=100&h=100"
WHOLE = LOOK.replace("h=100", "h=240")
failures = []


def expect(what, found, wanted):
    if found != wanted:
        failures.append(f"{what}: {found} instead of {wanted}")


def status(server, *arguments, **named):
    return server.ask(*arguments, **named)[0]


def check_strangers(server):
    own = f"127.0.0.1:{server.port}"
    for host in ("evil.example", f"evil.example:{server.port}", "127.0.0.1", "127.0.0.1:1", [own, own],
                 f"{own}.evil.example", ""):
        expect(f"host {host}", status(server, "options", host=host or " "), 403)
    for origin in ("http://evil.example", "null", f"https://{own}", f"http://{own}.evil.example"):
        expect(f"origin {origin}", status(server, "options", {"Origin": origin}), 403)
    for site in ("cross-site", "same-site", "something"):
        expect(f"site {site}", status(server, "options", {"Sec-Fetch-Site": site}), 403)
    secret = server.path.strip("/")
    for path in ("/", "/options", f"/{secret}", f"/{secret[:-1]}/options", f"/{secret}0/options",
                 f"/{secret.upper()}x/options", "//options", f"//{secret}/options"):
        expect(f"path {path}", status(server, path), 403)
    for method in ("POST", "PUT", "DELETE", "OPTIONS", "HEAD"):
        expect(f"method {method}", status(server, "options", method=method), 405)
    expect("localhost", status(server, "options", host=f"localhost:{server.port}"), 200)
    expect("its own page", status(server, "options", {"Origin": f"http://{own}",
                                                      "Sec-Fetch-Site": "same-origin"}), 200)


def check_requests(server):
    for query in ("o.Nonsense=1", "o.RedMinValue=131", "o.RedMinValue=", "o.RedMinValue=-5",
                  "o.redminvalue=130", "o.RedMinValue=130%00", "o.RedMinValue=130;touch", "o.=1",
                  "o.PageSize=Custom.80x200mm", "o.OldNames=True", "o.OutputColorType=1", "nonsense=1",
                  "page=0", "page=-1", "page=1e3", "tab=A&turn=1", "tab=a", "tab=a&turn=-1"):
        for path in ("paper?" + LOOK + "&", "facts?", "lines?", "velka.options?", "colours?"):
            expect(f"{path}{query}", status(server, path + query), 400)
    for look in ("", "dpi=60", LOOK.replace("dpi=60", "dpi=9"), LOOK.replace("dpi=60", "dpi=nan"),
                 LOOK.replace("dpi=60", "dpi=1e9"), LOOK.replace("w=100", "w=0"),
                 LOOK.replace("w=100", "w=99999"), LOOK.replace("x=0", "x=99999999999"),
                 LOOK.replace("w=100&h=100", "w=8192&h=8192")):
        for path in ("paper?", "original?"):
            expect(path + look, status(server, path + look), 400)
    for wish in ("ink=none&rgb=000000", "ink=red&rgb=00000", "ink=red&rgb=00000g", "ink=red"):
        expect(wish, status(server, "wanted?" + wish), 400)
    for path in ("nothing", "..", "../options", "page.css/", "%2e%2e/page.css"):
        expect(path, status(server, path) in (400, 403, 404), True)
    expect("a place beside the page", status(server, "place?x=1000&y=10&reach=0"), 404)
    expect("a page too far", status(server, f"paper?{LOOK}&page=7"), 422)
    expect("still there", status(server, f"paper?{LOOK}"), 200)


def check_turns(server):
    """A wish that is older than one that came before is not granted; other tabs do not care."""
    expect("turn 5", status(server, f"paper?{LOOK}&tab=a&turn=5"), 200)
    expect("turn 4", status(server, f"paper?{LOOK}&tab=a&turn=4"), 409)
    expect("turn 5 again", status(server, f"paper?{LOOK}&tab=a&turn=5"), 200)
    expect("another tab", status(server, f"paper?{LOOK}&tab=b&turn=1"), 200)


def check_many(server):
    """Several at once, each with its own settings: each gets what it asks for alone."""
    paths = [f"paper?{WHOLE}&o.PageSize=57x100mm&o.RedMinValue={value}" for value in (0, 100, 200, 255)]
    alone = [server.ask(path) for path in paths]
    with concurrent.futures.ThreadPoolExecutor(8) as pool:
        together = list(pool.map(server.ask, paths * 3))
    expect("pieces at once", [answer == alone[i % 4] for i, answer in enumerate(together)], [True] * 12)
    expect("different pictures", len({content for _, content in alone}) > 1, True)


def check_elsewhere(server):
    """Nobody listens where other machines could come in."""
    expect("the port is a number", server.port > 1023, True)
    with socket.socket() as other:
        other.settimeout(10)
        expect("another address", other.connect_ex(("127.0.0.2", server.port)) != 0, True)
    with socket.socket() as long:
        long.settimeout(60)
        long.connect(("127.0.0.1", server.port))
        try:
            long.sendall(b"GET /" + b"x" * 1_000_000)
            said = long.recv(100)
        except OSError:
            said = b""
        expect("an endless request", said == b"" or b" 4" in said[:12], True)


def main():
    folder = tempfile.mkdtemp(prefix="velka-door-")
    document = os.path.join(folder, "a name with 'quotes' & more.pdf")
    pictures.write_pdf(document, "0.8 0 0 rg 20 20 60 40 re f 0 0 0.8 rg 20 70 60 20 re f", 110, 110)
    arguments = (document, "--ppd", PPD, "--options", "PageSize=57x100mm job-name='my job' redminvalue=90")
    with service.Service(PROGRAM, *arguments) as server:
        for check in (check_strangers, check_requests, check_turns, check_many, check_elsewhere):
            check(server)
        told = json.loads(server.ask("options")[1])
        expect("begins with", told["settings"], {"PageSize": "57x100mm", "RedMinValue": "90"})
        lines = json.loads(server.ask("lines?o.RedMinValue=95")[1])
        quoted = document.replace("'", "'\\''")
        expect("lp", lines["lp"], f"lp -d QUEUE -o 'job-name=my\\ job' -o RedMinValue=95 '{quoted}'")
        expect("lpadmin", lines["lpadmin"],
               "lpadmin -p QUEUE -o 'job-name-default=my\\ job' -o RedMinValue=95")
        expect("status at the end", server.end(2), 0)
    print("\n".join(failures))
    return 1 if failures else 0


sys.exit(main())
