"""serve.py BUILD: from a slider of velkaview --serve to its picture, by turns with the filter
alone on the same raster. VELKA_BENCH_RUNS says how often (15)."""
import glob
import os
import statistics
import subprocess
import sys
import tempfile
import time

import browser
import service

BUILD = sys.argv[1]
RUNS = int(os.environ.get("VELKA_BENCH_RUNS", "15"))
VIEW = f"{BUILD}/view/velkaview"
FILTER = f"{BUILD}/filter/rastovelka"
PPD = f"{BUILD}/ppd/velka-standard.ppd"
MOVE = """
const [name, value] = arguments;
const slider = document.getElementById(name);
slider.value = value;
slider.dispatchEvent(new Event('input', { bubbles: true }));
return 0;"""


def painted(tab, turn):
    def holds():
        found = tab.data("body", "turn")
        return found != "" and int(found) >= turn and tab.run(
            "return document.getElementById('busy').hidden")
    browser.wait_until(f"turn {turn}", holds)


def filter_alone(raster, options):
    start = time.perf_counter()
    with open(raster, "rb") as source:
        subprocess.run([FILTER, "1", "bench", "bench", "1", options], stdin=source, check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                       env=dict(os.environ, PPD=PPD))
    return 1000 * (time.perf_counter() - start)


def measured(tab, resolution):
    options = f"Resolution={resolution}"
    start = time.perf_counter()
    with service.Service(VIEW, "--ppd", PPD, "--options", options) as server:
        tab.open(server.address)
        painted(tab, 0)
        first = 1000 * (time.perf_counter() - start)
        time.sleep(1)  # until all else is told
        raster = max(glob.glob(f"{tempfile.gettempdir()}/velkaview-*/*"), key=os.path.getsize)
        page, alone = [], []
        for run in range(RUNS):
            tab.run(MOVE, "RedMinValue", run % 50)
            painted(tab, run + 1)
            page.append(float(tab.data("body", "milliseconds")))
            time.sleep(0.5)
            alone.append(filter_alone(raster, f"{options} RedMinValue={5 * (run % 50)}"))
    return first, page, alone


def main():
    print("| A4 | first picture, ms | slider to picture, ms, least and median | the filter alone | "
          "ratio of the least, of the medians |\n|---|---|---|---|---|")
    with browser.Browser() as tab:
        for resolution in ("180dpi", "360dpi"):
            first, page, alone = measured(tab, resolution)
            least = min(page), min(alone)
            median = statistics.median(page), statistics.median(alone)
            print(f"| {resolution} | {first:.0f} | {least[0]:.0f}, {median[0]:.0f} | {least[1]:.0f}, "
                  f"{median[1]:.0f} | {least[0] / least[1]:.2f}, {median[0] / median[1]:.2f} |")


main()
