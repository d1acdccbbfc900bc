#!/usr/bin/env python3
"""check-page.py VELKAVIEW PPD-FOLDER CASE: the page of velkaview --serve in a browser.

Where VELKA_SCREENSHOTS names a folder, what the browser shows at the end is kept there.
"""
import os
import subprocess
import sys
import tempfile
import urllib.request

import browser
import pictures
import service

PROGRAM, PPDS, CASE = sys.argv[1:4]
PPD = os.path.join(PPDS, "velka-standard.ppd")
FOLDER = tempfile.mkdtemp(prefix="velka-page-")
DOCUMENT = os.path.join(FOLDER, "colours.pdf")
# Points from the left and the bottom, and the size, of a box in each colour.
BLUE = (60, 600, 120, 60)
RED = (240, 600, 120, 60)
STROKE = (242, 722, 3.2, 12)  # the upright one of the R in "Red words"
CONTENT = f"""0 0 0.75 rg {BLUE[0]} {BLUE[1]} {BLUE[2]} {BLUE[3]} re f
0.85 0 0 rg {RED[0]} {RED[1]} {RED[2]} {RED[3]} re f
0 g BT /F 24 Tf 60 720 Td (Black words) Tj ET
0.85 0 0 rg BT /F 24 Tf 240 720 Td (Red words) Tj ET
0.9 0.5 0.1 rg 420 600 120 60 re f
0.6 g 60 480 480 60 re f 0.4 0.6 0.4 rg 60 400 480 60 re f"""


def painted(tab, least=0):
    def holds():
        turn = tab.data("body", "turn")
        return turn != "" and int(turn) >= least and tab.run(
            "return document.getElementById('busy').hidden")
    browser.wait_until(f"turn {least} is painted", holds)
    return int(tab.data("body", "turn"))


def told(tab):
    """What is said beside the picture belongs to it."""
    browser.wait_until("all is told", lambda: tab.run(
        "const turn = document.body.dataset.turn;"
        "return ['facts', 'swatches'].every((id) => "
        "document.getElementById(id).dataset.turn === turn)"))


def same_as_program(tab, *arguments):
    """The paper on the screen is velkaview's own picture of it, pixel by pixel."""
    dpi = tab.data("#print", "dpi")
    name = service.picture(PROGRAM, FOLDER, DOCUMENT, PPD, "--dpi", dpi, *arguments)
    width, height, row = pictures.read_png(name)
    ruler = 22
    left, top = (round(float(tab.data("#print", side))) for side in ("left", "top"))
    assert tab.data("#print", "scale") == "1"
    across, down = tab.run("const c = document.getElementById('print'); return [c.width, c.height]")
    x, y = max(left, ruler), max(top, ruler)
    wide, high = min(left + width, across) - x, min(top + height, down) - y
    assert wide > 200 and high > 200, f"{wide} x {high} pixels are nothing to compare"
    shown = tab.canvas("#print", x, y, wide, high)
    meant = [row(i)[3 * (x - left):3 * (x - left + wide)] for i in range(y - top, y - top + high)]
    wrong = sum(a != b for a, b in zip(shown, meant))
    assert len(shown) == len(meant) and wrong == 0, f"{wrong} of {high} rows differ"
    assert len(set(b"".join(meant))) > 1, "the picture is empty"


def click_original(tab, box):
    left, top, dpi = (float(tab.data("#original", name)) for name in ("left", "top", "dpi"))
    x, y, width, height = box
    corner = tab.run("const b = document.getElementById('original').getBoundingClientRect();"
                     "return [b.left, b.top]")
    tab.click_at(corner[0] + left + (x + width / 2) / 72 * dpi,
                 corner[1] + top + (842 - y - height / 2) / 72 * dpi)


def place_says(tab, words):
    browser.wait_until(f"the place {words}", lambda: tab.text("#place-ink") == words)


def ink_of(tab, colour):
    return tab.run("return document.querySelector(`[data-rgb='${arguments[0]}']`)?.dataset.ink",
                   colour)


def covered(tab, ink):
    told(tab)
    names = tab.run("return [...document.querySelectorAll('#facts > *')].map((e) => e.textContent)")
    return float(names[names.index(f"{ink} covers") + 1].split()[0])


def check_sliders(tab, server):
    tab.open(server.address)
    first = painted(tab)
    same_as_program(tab)
    tab.press("#RedMinValue", "\ue014" * 20)  # the right arrow: 130 to 230
    painted(tab, first + 20)
    assert tab.run("return location.hash") == "#RedMinValue=230"
    same_as_program(tab, "--options", "RedMinValue=230")
    told(tab)
    assert ink_of(tab, "#d90000") == "black", "a red of 217 is outside"
    assert tab.text("#lp").endswith(f"-o RedMinValue=230 {DOCUMENT}")
    assert tab.text("#lpadmin") == "lpadmin -p QUEUE -o RedMinValue=230"
    tab.click("#undo")
    painted(tab, first + 21)
    same_as_program(tab)


def check_zoom(tab, server):
    tab.open(server.address + "#HalftoneRed=Screen6x6&DotPlacement=Exact")
    painted(tab)
    tab.click("#dots")
    browser.wait_until("a dot is a pixel", lambda: tab.data("#print", "dpi") == "180" and
                       tab.data("#print", "scale") == "1" and painted(tab) is not None)
    options = "HalftoneRed=Screen6x6 DotPlacement=Exact"
    same_as_program(tab, "--options", options)
    count = tab.run("return document.getElementById('print').dataset.painted")
    tab.click("#pins")
    browser.wait_until("the pins are there",
                       lambda: tab.run("return document.getElementById('print').dataset.painted") != count)
    painted(tab)
    same_as_program(tab, "--options", options, "--pins")


def check_colours(tab, server):
    tab.open(server.address + "#DotPlacement=Exact")
    painted(tab)
    told(tab)
    before = covered(tab, "Red")
    browser.wait_until("the original is there", lambda: tab.data("#original", "dpi"))
    click_original(tab, BLUE)
    place_says(tab, "prints black")
    click_original(tab, STROKE)
    place_says(tab, "prints red")
    assert "#d90000" in tab.text("#place") and ink_of(tab, "#d90000") == "red"
    click_original(tab, BLUE)
    place_says(tab, "prints black")
    assert "#0000bf" in tab.text("#place")
    turn = painted(tab)
    tab.click("#want-red")
    painted(tab, turn + 1)
    place_says(tab, "prints red")
    told(tab)
    assert ink_of(tab, "#0000bf") == "red" and ink_of(tab, "#000000") == "black"
    assert covered(tab, "Red") > before + 0.5
    assert "turns red" in tab.text("#place")
    assert tab.run("return document.querySelectorAll('#swatches .turned').length") > 0
    tab.click("#undo")
    painted(tab, turn + 2)
    place_says(tab, "prints black")
    assert covered(tab, "Red") == before


def check_tabs(tab, server):
    tab.open(server.address)
    painted(tab)
    one = tab.tab()
    other = tab.new_tab()
    tab.open(server.address + "#OutputColorType=Black")
    tab.use_tab(one)
    turn = painted(tab)
    tab.press("#RedMinValue", "\ue012" * 4)
    tab.use_tab(other)
    painted(tab)
    same_as_program(tab, "--options", "OutputColorType=Black")
    tab.use_tab(one)
    painted(tab, turn + 4)
    same_as_program(tab, "--options", "RedMinValue=110")


def check_settings(tab, server):
    tab.open(server.address + "#LevelsRed=30&PageSize=A5&Nonsense=1&RedMinValue=131")
    painted(tab)
    browser.wait_until("the lines are told", lambda: "LevelsRed" in tab.text("#lp"))
    assert tab.run("return location.hash") == "#LevelsRed=30&PageSize=A5", "what nobody knows stays"
    link = tab.run("return document.getElementById('save').href")
    kept = os.path.join(FOLDER, "kept.options")
    with urllib.request.urlopen(link) as answer, open(kept, "wb") as file:
        file.write(answer.read())
    same_as_program(tab, "--options-file", kept)
    words = subprocess.run(["xargs", "printf", "%s|"], stdin=open(kept, encoding="ascii"),
                           capture_output=True, check=True, text=True).stdout
    assert words == "-o|PageSize=A5|-o|LevelsRed=30|", words


def keep_screenshot(tab):
    if os.environ.get("VELKA_SCREENSHOTS"):
        tab.screenshot(os.path.join(os.environ["VELKA_SCREENSHOTS"], f"{CASE}.png"))


def main():
    gone = browser.missing()
    if gone:
        print(f"skipped: {gone} is not installed, and the page is tried in it")
        return 77
    pictures.write_pdf(DOCUMENT, CONTENT)
    with service.Service(PROGRAM, DOCUMENT, "--ppd", PPD) as server, browser.Browser() as tab:
        try:
            globals()[f"check_{CASE}"](tab, server)
        finally:
            keep_screenshot(tab)
        complaints = tab.complaints()
        assert complaints == [], complaints
    return 0


sys.exit(main())
