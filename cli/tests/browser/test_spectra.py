# SPDX-License-Identifier: Apache-2.0
"""Reports of measured spectra as a reader uses them."""

import pytest
from conftest import DATA
from page import CONTRAST, Page

PEPTIDES = [("PEPTIDEK", 2), ("LQSRPAAPPAPGPGQLTLR", 3), ("ELVISLIVESK", 2)]
MEASURED = "LQSRPAAPPAPGPGQLTLR"


def title(peptide, charge):
    return f"{peptide}/{charge}"


@pytest.fixture(scope="session")
def predicted(workplace):
    return workplace.predictions("predicted", PEPTIDES)


@pytest.fixture(scope="session")
def own(workplace, predicted):
    """Each prediction against itself, the last against another, and one whose spectrum is missing."""
    rows = [(peptide, charge, title(peptide, charge)) for peptide, charge in PEPTIDES]
    rows += [("ELVISLIVESR", 2, title(*PEPTIDES[0])), ("PEPTIDER", 2, "nowhere")]
    return workplace.spectra_report("own", rows, predicted, exit_code=1)


def paths(page, css):
    """Of each path the places (x, from, to) of its stems."""
    texts = page.script("return [...document.querySelectorAll(arguments[0])].map((p) => p.getAttribute('d'))", css)
    stems = [stem for text in texts for stem in text.split("M")[1:]]
    return [(float(s.split()[0]), float(s.split()[1].split("V")[0]), float(s.split("V")[1])) for s in stems]


def test_prediction_agrees_with_itself(browser, workplace, own):
    page = Page(browser, own)
    assert page.title() == "Spectra: predicted.mgf"
    assert page.column("peptide") == ["PEPTIDEK", "LQSRPAAPPAPGPGQLTLR", "ELVISLIVESK", "ELVISLIVESR", "PEPTIDER"]
    assert page.column("angle")[:3] == ["1.000"] * 3
    assert page.column("explained")[:3] == ["100.0 %"] * 3
    assert page.column("precursor (ppm)")[:3] == ["0.0"] * 3
    assert float(page.column("angle")[3]) < 0.5
    assert page.column("angle")[4] == "failed"
    page.wait_for_picture()
    # PEPTIDEK 2+: what is measured stands as high as what is predicted hangs.
    stems = paths(page, "#picture .series-0, #picture .series-1, #picture .series-2")
    middle = stems[0][1]
    up = sorted((round(x), middle - end) for x, _, end in stems if end < middle)
    down = sorted((round(x), end - middle) for x, _, end in stems if end > middle)
    assert len(up) > 5
    assert [x for x, _ in up] == [x for x, _ in down]
    assert [h for _, h in up] == pytest.approx([h for _, h in down], abs=0.25)  # each end is rounded to 0.1
    assert page.problems() == []


def test_shows_the_scores_of_the_table(browser, workplace, own):
    page = Page(browser, own)
    header, *rows = workplace.rows("own")
    assert header[:3] == ["peptide", "charge", "scan"]
    for title_, name, write in (
        ("angle", "spectral_angle", lambda text: f"{float(text):.3f}"),
        ("explained", "explained_intensity", lambda text: f"{100 * float(text):.1f} %"),
        ("peaks", "explained_peaks", str),
    ):
        expected = [write(row[header.index(name)]) if len(row) > header.index(name) and row[3] else "" for row in rows]
        shown = page.column(title_)
        assert shown[:4] == expected[:4]
    page.keys("a", "j", "r", "n", *"not this one")
    saved = page.save(workplace.folder)
    assert saved[0] == ["peptide", "charge", "scan", "mark", "note", *header[3:]]
    assert [row[3:5] for row in saved[1:3]] == [["accepted", ""], ["rejected", "not this one"]]
    assert [row[:3] + row[5:] for row in saved[1:]] == rows
    assert page.problems() == []


def test_filters_sorts_and_tells_failures(browser, own):
    page = Page(browser, own)
    page.sort("angle")
    assert page.column("peptide")[0] == "ELVISLIVESR"
    assert page.column("peptide")[-1] == "PEPTIDER", "what failed is last"
    page.select("#filter-found", "high")
    assert page.column("peptide") == ["PEPTIDEK", "LQSRPAAPPAPGPGQLTLR", "ELVISLIVESK"]
    page.select("#filter-found", "failed")
    assert page.column("peptide") == ["PEPTIDER"]
    assert "has no spectrum 'nowhere'" in page.text("#remarks .failed")
    page.select("#filter-found", "")
    page.filter("elvis")
    assert page.column("peptide") == ["ELVISLIVESR", "ELVISLIVESK"]
    assert "5 spectra, 2 listed" in page.text("#tally")
    assert page.problems() == []


def test_lists_the_highest_peaks_that_nothing_explains(browser, workplace, predicted, own):
    page = Page(browser, own)
    page.wait_for_picture()
    table = """[...document.querySelectorAll('[aria-label="measured peaks, not explained"] tbody tr')]
               .map((row) => [...row.cells].map((cell) => Number(cell.textContent)))"""
    assert page.script(f"return {table}") == []
    page.keys("j", "j", "j")
    assert "ELVISLIVESR" in page.text("#name")
    header, *rows = workplace.rows("own")
    scores = dict(zip(header, rows[3]))
    peaks = page.script(f"return {table}")
    count = int(scores["observed_peaks"]) - int(scores["explained_peaks"])
    assert len(peaks) == min(count, 20)
    assert [share for _, share in peaks] == sorted((share for _, share in peaks), reverse=True)
    lines = predicted.read_text(encoding="utf-8").split("BEGIN IONS")[1].splitlines()
    measured = {float(line.split()[0]): float(line.split()[1]) for line in lines if line[:1].isdigit()}
    most = max(measured.values())
    for mz, share in peaks:
        nearest = min(measured, key=lambda each: abs(each - mz))
        assert mz == pytest.approx(nearest, abs=1e-3)
        assert share == pytest.approx(measured[nearest] / most, abs=1e-3)
    explained = [float(cell) for cell in page.script("""return [...document.querySelectorAll(
        '[aria-label="predicted peaks"] tbody tr')].map((row) => row.cells[3].textContent).filter(Boolean)""")]
    assert len(explained) == int(scores["explained_peaks"])
    assert not any(abs(mz - each) < 2e-3 for mz, _ in peaks for each in explained)


def test_tells_an_explained_peak_from_a_neighbour(browser, workplace, predicted):
    """Neighbours closer than the page's m/z are taken to be exact: of half the intensity, and of the same."""

    def neighbour(mz):  # one that the table, of three decimals, can tell from it
        return mz + 5e-4 if round(mz + 5e-4, 3) != round(mz, 3) else mz - 5e-4

    block = predicted.read_text(encoding="utf-8").split("BEGIN IONS")[1].split("END IONS")[0]
    peaks = sorted(tuple(map(float, line.split()[:2])) for line in block.splitlines() if line[:1].isdigit())
    first, second = sorted(peaks, key=lambda peak: -peak[1])[:2]
    measured = sorted([*peaks, (neighbour(first[0]), first[1] / 2), (neighbour(second[0]), second[1])])
    run = workplace.folder / "neighbours.mgf"
    lines = [f"{mz:.5f} {intensity}\n" for mz, intensity in measured]
    run.write_text("BEGIN IONS\nTITLE=one\n" + "".join(lines) + "END IONS\n", encoding="utf-8")
    page = Page(browser, workplace.spectra_report("neighbours", [(*PEPTIDES[0], "one")], run))
    page.wait_for_picture()

    def column(table, place):
        cells = page.script(
            """return [...document.querySelectorAll(`[aria-label="${arguments[0]}"] tbody tr`)]
                 .map((row) => row.cells[arguments[1]].textContent).filter(Boolean)""",
            table,
            place,
        )
        return [float(cell) for cell in cells]

    explained = set(column("predicted peaks", 3))
    others = [round(mz, 3) for mz, _ in measured if min(abs(mz - each) for each in explained) > 1e-4]
    assert len(others) == 2
    assert sorted(column("measured peaks, not explained", 0)) == others


@pytest.mark.parametrize("scheme", ["light", "dark"])
def test_mirror_of_a_real_spectrum(browser, workplace, scheme):
    run = DATA / f"{MEASURED}.mzML"
    report = workplace.spectra_report("real", [(MEASURED, 3, 30069)], run)
    page = Page(browser, report, scheme=scheme)
    page.wait_for_picture()
    labels = page.script('return [...document.querySelectorAll("#picture .ion-label")].map((e) => e.textContent)')
    assert {"y9+", "b7+", "b10+", "y7+"} <= set(labels), "the highest ones"
    # Of each half the highest peak reaches 100 %, which is the height but for 18 pixels.
    stems = paths(page, "#picture .stem")
    middle = stems[0][1]
    half = page.script('return (document.getElementById("picture").clientHeight - 38 - 42) / 2')
    assert min(end for _, _, end in stems) == pytest.approx(middle - (half - 18), abs=0.6)
    assert max(end for _, _, end in stems) == pytest.approx(middle + (half - 18), abs=0.6)
    # y1 of arginine: 156.10111 + 18.01056 + 1.00728.
    cells = page.script(
        """const row = [...document.querySelectorAll("#numbers tbody tr")].find((r) => r.cells[0].textContent === "y1+");
           return [...row.cells].map((cell) => cell.textContent)"""
    )
    assert float(cells[1]) == pytest.approx(175.11895, abs=1e-4)
    assert float(cells[3]) == pytest.approx(175.119, abs=175.119 * 20e-6)
    assert abs(float(cells[4])) <= 20
    facts = page.text("#facts")
    assert f"angle {page.column('angle')[0]}" in facts
    assert f"{page.column('explained')[0]} of the intensity explained" in facts
    assert "precursor m/z 643.03" in facts
    inside = page.script(
        """const box = document.querySelector("#picture svg").getBoundingClientRect();
           return [...document.querySelectorAll("#picture .ion-label")].every((label) => {
             const own = label.getBoundingClientRect();
             return own.top >= box.top && own.bottom <= box.bottom && own.left >= box.left - 1 && own.right <= box.right + 1;
           })"""
    )
    assert inside, "no label is cut off"
    assert all(ratio >= least for _, ratio, least in page.script(CONTRAST))
    assert page.problems() == []


def test_keys_zoom_through_the_quarters(browser, workplace):
    report = workplace.spectra_report("zoomed", [(MEASURED, 3, 30069)], DATA / f"{MEASURED}.mzML")
    page = Page(browser, report)
    page.wait_for_picture()
    whole = len(paths(page, "#picture .stem"))
    shown = 0
    for quarter in range(1, 5):
        page.keys("z")
        assert page.text("#shown") == f"Quarter {quarter} of 4"
        shown += len(paths(page, "#picture .stem"))
    assert shown == whole, "each peak is in one of them"
    page.keys("z")
    assert page.text("#shown").startswith("Whole spectrum")
    assert len(paths(page, "#picture .stem")) == whole
    assert page.problems() == []


def test_drags_end_where_digits_do(browser, workplace):
    report = workplace.spectra_report("dragged", [(MEASURED, 3, 30069)], DATA / f"{MEASURED}.mzML")
    page = Page(browser, report)
    page.wait_for_picture()
    for _ in range(20):
        page.drag("#picture", 300, 310)
    assert page.text("#shown") == "A part of the spectrum"
    assert page.script('return document.querySelectorAll("#picture path[d*=NaN]").length') == 0
    assert page.problems() == []


def test_failed_and_empty_spectra_show_no_old_picture(browser, workplace, predicted):
    empty = workplace.folder / "empty.mgf"
    empty.write_text(predicted.read_text(encoding="utf-8") + "BEGIN IONS\nTITLE=none\nEND IONS\n", encoding="utf-8")
    rows = [("PEPTIDEK", 2, "PEPTIDEK/2"), ("PEPTIDEK", 2, "nowhere"), ("PEPTIDEK", 2, "none"), ("PEPTIDEK", "two", "x")]
    page = Page(browser, workplace.spectra_report("empties", rows, empty, exit_code=1))
    page.wait_for_picture()
    page.keys("j")
    assert not page.element("#figure").is_displayed()
    page.keys("j")
    assert page.element("#figure").is_displayed()
    page.wait_for_picture()
    assert page.column("angle")[2] == "0.000"
    assert "0 of 0 peaks" in page.text("#facts")
    page.keys("j")
    assert page.chosen() == "PEPTIDEK"
    assert page.column("charge")[3] == ""
    assert page.problems() == []


def test_data_that_cannot_be_read_are_told(browser, own):
    page = Page(browser, own)
    page.wait_for_picture()
    page.script("for (const element of document.querySelectorAll('script.points')) element.textContent = 'AAAA'")
    page.script("ReportData.prototype.block = () => { throw new Error('gone'); }")
    page.keys("j")
    assert "cannot be read" in page.text("#remarks .failed")
    assert not page.element("#figure").is_displayed()


def test_saved_names_are_those_of_the_scores(browser, workplace, predicted):
    rows = [("PEPTIDEK", 2, "PEPTIDEK/2"), ("PEPTIDEK", 2, "control\x01x")]
    page = Page(browser, workplace.spectra_report("control", rows, predicted, exit_code=1))
    saved = page.save(workplace.folder)
    assert [row[:3] for row in saved] == [row[:3] for row in workplace.rows("control")]


def test_hostile_names_are_text(browser, workplace, predicted):
    hostile = "</script><script>document.title='caught'</script>"
    rows = [("PEPTIDEK", 2, hostile), (hostile, 2, "PEPTIDEK/2"), ("PEPTIDEK", 2, "PEPTIDEK/2")]
    page = Page(browser, workplace.spectra_report("hostile", rows, predicted, exit_code=1))
    assert page.column("scan")[0] == hostile
    assert page.column("peptide")[1] == hostile
    page.keys("j", "j")
    page.wait_for_picture()
    assert "caught" not in page.script("return document.title")
    assert page.script('return document.querySelectorAll("script:not([type])").length') == 1
    assert page.requests() == [(workplace.folder / "hostile.html").as_uri()]
    assert page.problems() == []
