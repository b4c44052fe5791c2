# SPDX-License-Identifier: Apache-2.0
"""A report in the browser, in the terms of its reader."""

import json
import time

from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.support.ui import Select, WebDriverWait

# The contrast of each visible text with what lies behind it, by the definition of WCAG 2.
CONTRAST = """
const luminance = (color) => {
  const [r, g, b] = color.map((c) => (c / 255 <= 0.04045 ? c / 255 / 12.92 : ((c / 255 + 0.055) / 1.055) ** 2.4));
  return 0.2126 * r + 0.7152 * g + 0.0722 * b;
};
const parse = (text) => {
  const numbers = text.match(/[\\d.]+/g).map(Number);
  return numbers.length < 4 ? [...numbers, 1] : numbers;
};
const behind = (element) => {
  const layers = [];
  for (let e = element; e; e = e.parentElement)
    layers.push(parse(getComputedStyle(e).backgroundColor));
  const over = (under, [r, g, b, a]) => [r, g, b].map((c, i) => c * a + under[i] * (1 - a));
  return layers.reverse().reduce(over, [255, 255, 255]);
};
const contrast = (a, b) => {
  const [high, low] = [luminance(a), luminance(b)].sort((x, y) => y - x);
  return (high + 0.05) / (low + 0.05);
};
const found = [];
const add = (element, color, what, least) =>
  found.push([what, contrast(parse(color).slice(0, 3), behind(element)), least]);
for (const element of document.querySelectorAll("body *")) {
  if (!element.getClientRects().length || element.closest("script"))
    continue;
  const style = getComputedStyle(element);
  const isSvg = element instanceof SVGElement;
  if ([...element.childNodes].some((node) => node.nodeType === Node.TEXT_NODE && node.textContent.trim()))
    add(element, isSvg ? style.fill : style.color, `${element.tagName} ${element.textContent.trim()}`, 4.5);
  if (element.placeholder)
    add(element, getComputedStyle(element, "::placeholder").color, `placeholder of ${element.id}`, 4.5);
  if (isSvg && style.stroke !== "none" && !element.closest(".band, .range, .ion-label"))
    add(element, style.stroke, `line ${element.getAttribute("class")}`, 3);
  if (/^(BUTTON|INPUT|SELECT|TEXTAREA)$/.test(element.tagName) && style.borderTopWidth !== "0px")
    add(element.parentElement, style.borderTopColor, `edge of ${element.id}`, 3);
}
return found;
"""


class Page:
    def __init__(self, browser, path, width=1400, height=900, scheme="light"):
        self.browser = browser
        size = {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False}
        browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", size)
        feature = {"name": "prefers-color-scheme", "value": scheme}
        browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [feature]})
        browser.get_log("browser")
        browser.get_log("performance")
        browser.get(path.as_uri())
        self.wait(lambda: self.title() != "Reading the report")
        self.settle()

    def wait(self, condition):
        WebDriverWait(self.browser, 20, poll_frequency=0.02).until(lambda _: condition())

    def settle(self):
        """Waits until what was drawn for the last action is there."""
        self.browser.execute_async_script(
            "const done = arguments[0]; requestAnimationFrame(() => requestAnimationFrame(() => setTimeout(done, 0)))"
        )

    def script(self, text, *arguments):
        return self.browser.execute_script(text, *arguments)

    def element(self, css):
        return self.browser.find_element(By.CSS_SELECTOR, css)

    def text(self, css):
        return self.script("return document.querySelector(arguments[0]).textContent", css)

    def title(self):
        return self.text("#title")

    def keys(self, *keys):
        for key in keys:
            ActionChains(self.browser, duration=0).send_keys(key).perform()
        self.settle()

    def drag(self, css, left, right):
        """Over a part of an element, counted in pixels from its left edge."""
        element = self.element(css)
        from_middle = -element.size["width"] // 2
        chain = ActionChains(self.browser, duration=0)
        chain.move_to_element_with_offset(element, from_middle + left, 0).click_and_hold()
        chain.move_by_offset(right - left, 0).release().perform()
        self.settle()

    def filter(self, words):
        field = self.element("#filter")
        field.clear()
        field.send_keys(words or " ")
        self.settle()

    def select(self, css, value):
        Select(self.element(css)).select_by_value(value)
        self.settle()

    def sort(self, title):
        for button in self.browser.find_elements(By.CSS_SELECTOR, "#head button"):
            if button.text.split(" ▲")[0].split(" ▼")[0] == title:
                button.click()
                self.settle()
                return
        raise AssertionError(f"no column {title}")

    def rows(self):
        """The texts of the rows that exist, by their place in the table."""
        return self.script(
            """return [...document.querySelectorAll("#body [role=row]")]
                 .sort((a, b) => a.dataset.place - b.dataset.place)
                 .map((row) => [...row.children].map((cell) => cell.textContent))"""
        )

    def column(self, title):
        titles = self.script(
            'return [...document.querySelectorAll("#head button")].map((b) => b.textContent.replace(/ [▲▼]$/, ""))'
        )
        return [row[titles.index(title)] for row in self.rows()]

    def chosen(self):
        return self.text("#name")

    def wait_for_picture(self):
        self.wait(lambda: self.script('return document.querySelectorAll("#picture .trace, #picture .stem").length > 0'))

    def save(self, folder):
        """The lines of the table that the page saves."""
        path = folder / f"{self.browser.current_url.rsplit('/', 1)[1].removesuffix('.html')}.marks.tsv"
        path.unlink(missing_ok=True)
        self.element("#save").click()
        deadline = time.monotonic() + 20
        # Chromium makes an empty file of this name before it renames the written one.
        while not path.exists() or path.stat().st_size == 0:
            assert time.monotonic() < deadline, "nothing was saved"
            time.sleep(0.02)
        return [line.split("\t") for line in path.read_text(encoding="utf-8").split("\n")[:-1]]

    def problems(self):
        return [entry["message"] for entry in self.browser.get_log("browser") if entry["level"] != "INFO"]

    def requests(self):
        """The addresses that were asked for."""
        messages = (json.loads(entry["message"])["message"] for entry in self.browser.get_log("performance"))
        return [m["params"]["request"]["url"] for m in messages if m["method"] == "Network.requestWillBeSent"]
