# SPDX-License-Identifier: Apache-2.0
"""Reports as a reader uses them."""

import http.server
import os
import pathlib
import threading

import pytest
from conftest import DATA, trace
from page import CONTRAST, Page
from selenium.webdriver.common.keys import Keys

TWO = ((60, 900, 4), (140, 8000, 6))


@pytest.fixture(scope="session")
def mixed(workplace):
    """Six traces: heights differ, the third has no peak and the fifth has two."""
    lines = "".join(
        [
            trace("SRM 10", peaks=((100, 5000, 5),)),
            trace("SRM 9", peaks=((80, 700, 5),)),
            trace("flat", count=10, peaks=()),
            trace("SRM 100", peaks=((120, 90000, 5),)),
            trace("two peaks", peaks=TWO),
            trace("other", peaks=((50, 3000, 5),)),
        ]
    )
    return workplace.report("mixed", lines)


def screenshot(page, name):
    if folder := os.environ.get("ZAV_REPORT_SCREENSHOTS"):
        pathlib.Path(folder).mkdir(parents=True, exist_ok=True)
        page.browser.save_screenshot(f"{folder}/{name}.png")


def test_shows_the_numbers_of_the_table(browser, workplace, mixed):
    page = Page(browser, mixed)
    rows = workplace.rows("mixed")
    assert page.title() == "Peaks: mixed.jsonl"
    assert page.column("id") == ["SRM 10", "SRM 9", "flat", "SRM 100", "two peaks", "other"]
    assert page.column("peaks") == ["1", "1", "0", "1", "2", "1"]
    highest = {}
    for row in rows[1:]:
        if row[0] not in highest or float(row[6]) > float(highest[row[0]][6]):
            highest[row[0]] = row
    names = page.column("id")
    for title, place in (("start (s)", 1), ("end (s)", 2), ("apex (s)", 3)):
        shown = page.column(title)
        for name, text in zip(names, shown):
            assert text == (f"{float(highest[name][place]):.1f}" if name in highest else "")
    page.keys("j", "j", "j", "j")
    assert page.chosen() == "two peaks"
    cells = page.script(
        'return [...document.querySelectorAll("#numbers tbody tr")].map((r) => [...r.cells].map((c) => c.textContent))'
    )
    assert [row[1:] for row in cells] == [row[1:] for row in rows if row[0] == "two peaks"]
    assert page.problems() == []


def test_keys_and_clicks_choose(browser, mixed):
    page = Page(browser, mixed)
    assert page.chosen() == "SRM 10"
    page.keys("j")
    assert page.chosen() == "SRM 9"
    page.keys(Keys.ARROW_DOWN, Keys.ARROW_DOWN)
    assert page.chosen() == "SRM 100"
    page.keys("k", Keys.ARROW_UP)
    assert page.chosen() == "SRM 9"
    page.keys(Keys.END, "j")
    assert page.chosen() == "other"
    page.keys(Keys.HOME, "k")
    assert page.chosen() == "SRM 10"
    page.element("#row-4").click()
    assert page.chosen() == "two peaks"
    active = page.script('return document.getElementById("table").getAttribute("aria-activedescendant")')
    assert active == "row-4"
    assert page.script('return document.querySelector("[aria-selected=true]").id') == "row-4"
    assert page.problems() == []


def test_filters_and_sorts(browser, mixed):
    page = Page(browser, mixed)
    page.keys("j", "j")
    assert page.chosen() == "flat"
    page.filter("srm")
    assert page.column("id") == ["SRM 10", "SRM 9", "SRM 100"]
    assert "6 traces, 3 listed" in page.text("#tally")
    assert page.chosen() == "SRM 10", "the first, where the chosen one is not listed"
    page.keys(Keys.ENTER, "j")
    assert page.chosen() == "SRM 9", "Enter leads to the table"
    page.sort("id")
    assert page.column("id") == ["SRM 9", "SRM 10", "SRM 100"]
    page.filter("")
    page.sort("height")
    assert page.column("id") == ["SRM 9", "other", "SRM 10", "two peaks", "SRM 100", "flat"]
    page.sort("height")
    assert page.column("id") == ["SRM 100", "two peaks", "SRM 10", "other", "SRM 9", "flat"], "nothing is last"
    page.sort("height")
    assert page.column("id")[0] == "SRM 10", "the order of the file again"
    page.select("#filter-found", "several")
    assert page.column("id") == ["two peaks"]
    page.select("#filter-found", "none")
    assert page.column("id") == ["flat"]
    page.filter("no such trace")
    assert page.rows() == []
    assert not page.element("#detail").is_displayed()
    page.select("#filter-found", "")
    page.filter("")
    assert len(page.rows()) == 6
    assert page.problems() == []


def test_marks_and_notes_are_kept_and_saved(browser, workplace, mixed):
    page = Page(browser, mixed)
    page.keys("a", "j", "r", "j", "j", "j", "a", "n")
    page.keys(*"wide, j ", "and")
    page.script('document.execCommand("insertText", false, "\\ttab")')  # as pasted: the key leaves the field
    page.keys(Keys.ENTER, *"line")
    page.keys(Keys.ESCAPE, "j", "a", "u")
    assert page.column("mark") == ["✓ accepted", "✗ rejected", "", "", "✓ accepted", ""]
    assert "2 accepted, 1 rejected, 3 open" in page.text("#tally")
    page.select("#filter-mark", "accepted")
    assert page.column("id") == ["SRM 10", "two peaks"]

    marks = {"SRM 10": ["accepted", ""], "SRM 9": ["rejected", ""], "two peaks": ["accepted", "wide, j and tab line"]}
    header, *rows = workplace.rows("mixed")
    expected = [["id", "mark", "note", "time_unit", *(name.removesuffix("_s") for name in header[1:])]]
    for name in ("SRM 10", "SRM 9", "flat", "SRM 100", "two peaks", "other"):
        found = [row[1:] for row in rows if row[0] == name] or [[""] * (len(header) - 1)]
        expected += [[name, *marks.get(name, ["", ""]), "s", *row] for row in found]
    assert page.save(workplace.folder) == expected

    browser.refresh()
    page.settle()
    assert page.column("mark") == ["✓ accepted", "✗ rejected", "", "", "✓ accepted", ""]
    page.keys("j", "j", "j", "j")
    assert page.element("#note").get_property("value") == "wide, j and\ttab\nline"
    assert page.problems() == []


def test_marks_are_those_of_one_report(browser, workplace, mixed):
    Page(browser, mixed).keys("a")
    other = workplace.report("other", trace("SRM 10", peaks=((101, 5000, 5),)))
    page = Page(browser, other)
    assert page.column("mark") == [""]
    assert Page(browser, mixed).column("mark")[0] == "✓ accepted"


def warns(page):
    return page.script(
        """const event = new Event("beforeunload", { cancelable: true });
           window.dispatchEvent(event);
           return event.defaultPrevented"""
    )


def test_warns_of_unsaved_marks_where_none_are_kept(browser, workplace, mixed):
    denied = """Object.defineProperty(window, "localStorage", {
                  get() { throw new DOMException("no", "SecurityError"); } })"""
    script = browser.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {"source": denied})
    try:
        page = Page(browser, mixed)
        assert "keeps no marks" in page.text("#tally")
        assert not warns(page)
        page.keys("a")
        assert warns(page)
        assert page.save(workplace.folder)[1][:2] == ["SRM 10", "accepted"]
        assert not warns(page)
    finally:
        browser.execute_cdp_cmd("Page.removeScriptToEvaluateOnNewDocument", script)
    page = Page(browser, mixed)
    page.keys("a")
    assert not warns(page), "the browser keeps it"


HOSTILE = [
    "</script><script>document.title='caught'</script>",
    "<img src=x onerror=\"document.title='caught'\">",
    "<!--<script>",
    "a&lt;b&amp;c",
    "=1+1",
    "@data@",
    "'\"><svg onload=document.title='caught'>",
    "\u202eolleh",
    "\U0001f9ea β‑lactoglobulin",
]


def test_hostile_ids_are_text(browser, workplace):
    lines = "".join(trace(name, group=name) for name in HOSTILE) + trace("tab\tand\nline", group="x")
    for grouped in ([], ["--group"]):
        page = Page(browser, workplace.report("hostile", lines, *grouped))
        assert page.column("group" if grouped else "id")[: len(HOSTILE)] == HOSTILE
        for name in HOSTILE:
            assert page.chosen() == name
            page.wait_for_picture()
            page.keys("j")
        assert "caught" not in page.script("return document.title")
        assert page.script('return document.querySelectorAll("img, iframe, object, a[href]").length') == 0
        assert page.script('return document.querySelectorAll("script:not([type])").length') == 1
        saved = page.save(workplace.folder)
        assert [row[0] for row in saved[1:]] == [row[0] for row in workplace.rows("hostile")[1:]]
        assert page.problems() == []


class Counter(http.server.BaseHTTPRequestHandler):
    requests = 0

    def do_GET(self):
        Counter.requests += 1
        self.send_response(200)
        self.send_header("Access-Control-Allow-Origin", "*")
        self.end_headers()

    def log_message(self, *_):
        pass


def test_page_uses_no_network_and_cannot(browser, mixed):
    page = Page(browser, mixed)
    page.keys("j", "a")
    page.wait_for_picture()
    assert page.requests() == [mixed.as_uri()]
    server = http.server.HTTPServer(("127.0.0.1", 0), Counter)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    try:
        outcome = browser.execute_async_script(
            """const [address, done] = arguments;
               const image = new Image();
               image.src = address + "/image";
               const script = document.createElement("script");
               script.src = address + "/script";
               document.body.append(image, script);
               fetch(address).then(() => done("reached"), () => setTimeout(() => done("refused"), 300));""",
            f"http://127.0.0.1:{server.server_port}",
        )
    finally:
        server.shutdown()
        server.server_close()
    assert outcome == "refused"
    assert Counter.requests == 0


def test_ten_thousand_traces_are_few_rows(browser, workplace):
    lines = "".join(trace(f"SRM {i}", count=60, peaks=((20 + i % 20, 100 + i, 3),)) for i in range(10000))
    report = workplace.report("many", lines, "--method", "walk")
    page = Page(browser, report)
    timing = 'const [n] = performance.getEntriesByType("navigation"); return Math.round(n.loadEventEnd)'
    print(f"10,000 traces, {report.stat().st_size} bytes, open after {page.script(timing)} ms")
    rows_at_once = 60  # 900 pixels of rows of 28, and some to spare
    assert len(page.rows()) < rows_at_once
    assert page.column("id")[0] == "SRM 0"
    page.keys(Keys.END)
    assert len(page.rows()) < rows_at_once
    assert page.chosen() == "SRM 9999"
    assert page.column("id")[-1] == "SRM 9999"
    page.wait_for_picture()
    page.script('document.getElementById("table").scrollTop /= 2')
    page.settle()
    assert len(page.rows()) < rows_at_once
    assert "SRM 5000" in page.column("id")
    page.filter("777")
    expected = [f"SRM {i}" for i in range(10000) if "777" in str(i)]
    assert page.column("id")[:10] == expected[:10]
    assert f"{len(expected)} listed" in page.text("#tally")
    elements = page.script('return document.querySelectorAll("main *").length')
    assert elements < 1500
    assert page.problems() == []


def test_splits_and_groups_are_drawn(browser, workplace):
    lines = "".join(trace(f"y{i}", peaks=((90, 5000 + i, 5), (110, 5000, 5)), group="P") for i in range(8))
    page = Page(browser, workplace.report("splits", lines, "--group", command="split"))
    page.wait_for_picture()
    assert page.column("group") == ["P"]
    assert page.column("traces") == ["8"]
    assert page.script('return document.querySelectorAll("#picture .trace").length') == 9, "with the consensus"
    assert page.script('return document.querySelectorAll("#picture .split").length') == 1
    probability = workplace.rows("splits")[1][4]
    assert page.text("#picture .split-label") == f"{float(probability):.2f}"
    assert page.script('return document.querySelectorAll("#legend li").length') == 9
    # The line of a trace goes through its highest point, at the top of the plot but for 4 %.
    box = page.script(
        'const b = document.querySelector("#picture .series-0").getBBox(); return [b.x, b.y, b.width, b.height]'
    )
    plot = page.script(
        'const p = document.getElementById("picture"); return [p.clientWidth - 66 - 14, p.clientHeight - 38 - 42]'
    )
    assert box[0] == pytest.approx(66, abs=0.2)
    assert box[2] == pytest.approx(plot[0], abs=0.2)
    assert box[1] == pytest.approx(38 + plot[1] * 0.04 / 1.04, abs=1)
    assert page.problems() == []


def test_failed_traces_and_mixed_units_are_told(browser, workplace):
    broken = '{"id": "uneven", "rt": [1, 2], "intensity": [1]}\n'
    lines = trace("seconds") + broken + trace("minutes", peaks=((90, 5000, 5),), rt_unit="min")
    page = Page(browser, workplace.report("broken", lines, "--format", "json", exit_code=1))
    assert page.column("peaks") == ["1", "failed", "1"]
    assert page.column("apex")[0].endswith(" s")
    assert page.column("apex")[2].endswith(" min")
    page.sort("apex")
    assert page.column("id") == ["seconds", "minutes", "uneven"]
    page.select("#filter-found", "failed")
    assert page.column("id") == ["uneven"]
    page.keys(Keys.ESCAPE, Keys.HOME)
    assert page.chosen() == "uneven"
    assert "line 2" in page.text("#remarks .failed")
    assert page.problems() == []


def test_zoom_shows_one_peak(browser, workplace, mixed):
    page = Page(browser, mixed)
    page.filter("two")
    page.keys(Keys.ESCAPE)
    assert page.column("id") == ["two peaks"], "the filter stays"
    page.wait_for_picture()
    assert page.script('return document.querySelectorAll("#picture .band").length') == 2
    rows = [row for row in workplace.rows("mixed") if row[0] == "two peaks"]
    labels = page.script('return [...document.querySelectorAll("#picture .apex-label")].map((e) => e.textContent)')
    assert [float(label) for label in labels] == [pytest.approx(float(row[3]), abs=0.5) for row in rows]
    limits = [row[1:3] for row in rows]
    page.keys("z")
    assert page.text("#shown") == "Peak 1 of 2"
    first, last = page.script(
        """const box = (mark) => mark.getBBox().x - 66;
           const [mark] = document.querySelectorAll("#picture .limit");
           return [box(mark), mark.getBBox().width]"""
    )
    width = page.script('return document.getElementById("picture").clientWidth - 66 - 14')
    assert float(limits[0][1]) > float(limits[0][0])
    assert first == pytest.approx(width / 3, abs=1), "as much on both sides"
    assert last == pytest.approx(width / 3, abs=1)
    page.keys("z")
    assert page.text("#shown") == "Peak 2 of 2"
    page.keys("z")
    assert page.text("#shown").startswith("Whole trace")
    assert page.problems() == []


@pytest.mark.parametrize("scheme", ["light", "dark"])
def test_contrast_is_that_of_the_guidelines(browser, workplace, mixed, scheme):
    grouped = workplace.report_of("real", [DATA / "FTQAGSEVSALLGR.jsonl"], "--group")
    checked = 0
    for report in (mixed, grouped):
        page = Page(browser, report, scheme=scheme)
        page.wait_for_picture()
        for keys in (["a"], ["j", "r"], ["j"]):
            page.keys(*keys)
            for what, ratio, least in page.script(CONTRAST):
                assert ratio >= least, f"{what}: {ratio:.2f}"
                checked += 1
    background = page.script("return getComputedStyle(document.body).backgroundColor")
    assert (background == "rgb(255, 255, 255)") == (scheme == "light")
    assert checked > 200
    screenshot(page, f"group-{scheme}")


def test_keyboard_reaches_everything_and_shows_where_it_is(browser, mixed):
    page = Page(browser, mixed)
    page.wait_for_picture()
    page.script("document.activeElement.blur()")
    reached = []
    for _ in range(60):
        page.keys(Keys.TAB)
        place = page.script(
            """const e = document.activeElement;
               const style = getComputedStyle(e);
               const name = e.getAttribute("aria-label") || e.labels?.[0]?.textContent.trim() || e.textContent.trim();
               return [e.tagName, e.id, name, style.outlineStyle, parseFloat(style.outlineWidth)]"""
        )
        if reached and place == reached[0]:
            break
        if place[0] != "BODY":  # between the last and the first
            reached.append(place)
    for tag, identifier, name, style, width in reached:
        assert style == "solid" and width >= 2, f"{tag} {identifier} does not show the focus"
        assert name, f"{tag} {identifier} has no name"
    names = [place[1] for place in reached]
    for identifier in ("filter", "filter-mark", "filter-found", "save", "table", "accept", "reject", "step-on", "note"):
        assert identifier in names, f"{identifier} cannot be reached"
    count = page.script('return document.getElementById("table").getAttribute("aria-rowcount")')
    assert count == "7", "the rows and the header"
    page.sort("height")
    assert page.script('return document.querySelectorAll("[aria-sort]").length') == 1
    assert page.script('return document.querySelector("[aria-sort]").getAttribute("aria-sort")') == "ascending"


@pytest.mark.parametrize("scheme", ["light", "dark"])
def test_narrow_page_has_everything_in_reach(browser, mixed, scheme):
    page = Page(browser, mixed, width=400, height=800, scheme=scheme)
    page.wait_for_picture()
    assert page.script("return document.documentElement.scrollWidth") <= 400
    assert page.script('return document.getElementById("table").clientHeight') > 150
    assert page.script('return document.getElementById("picture").clientHeight') > 150
    page.keys("j", "j", "j", "j")
    assert page.chosen() == "two peaks"
    screenshot(page, f"narrow-{scheme}")
    assert page.problems() == []


def test_marks_are_followed_by_the_next_trace_on_request(browser, mixed):
    page = Page(browser, mixed)
    page.keys("a")
    assert page.chosen() == "SRM 10"
    page.element("#step-on").click()
    page.keys("r")
    assert page.chosen() == "SRM 9"
    page.element("#accept").click()
    assert page.chosen() == "flat"
    assert page.column("mark")[:3] == ["✗ rejected", "✓ accepted", ""]
    assert page.problems() == []
