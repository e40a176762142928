"""Drives the page that zulog makes in a browser: what is clicked and typed, and what is then shown.

usage: pageBrowserTest.py <pageMaker> [test...]

pageMaker is the program of that name, whose head says what is in its pages. Ends with 77 if there
is no browser or no driver for it, and says what is missing.
"""

import json
import re
import subprocess
import sys
import tempfile
import traceback
from pathlib import Path
from urllib.parse import unquote, urlsplit

SKIPPED = 77
COUNT = 5000
BIG_COUNT = 1000000
# Record 7 has three lines.
EXTRA_LINES = 2
MOST_ROWS = 200
# Only bounds a hang.
PATIENCE = 300
BROWSER = "/usr/bin/chromium"
DRIVER = "/usr/bin/chromedriver"
MARKUP = '<b id="bad">&amp;</b></script><script>bad=1</script><!--'
LEVELS = ["Internal Error", "Fatal Error", "Error", "Warning", "Informational", "Tracing",
          "Profiling", "unknown", "marks"]


def skip(reason):
    print(f"skipped: {reason}")
    sys.exit(SKIPPED)


try:
    from selenium import webdriver
    from selenium.common.exceptions import WebDriverException
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.action_chains import ActionChains
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
    from selenium.webdriver.support.ui import Select, WebDriverWait
except ImportError as error:
    skip(f"python3-selenium is missing: {error}")


def isError(number):
    return number % 1000 == 0 and 10 <= number < COUNT - 1


def isWarning(number):
    return number % 50 == 0 and number % 1000 != 0 and number < COUNT - 1


def errors(count=COUNT):
    return [number for number in range(10, count - 1) if number % 1000 == 0]


def startBrowser():
    options = webdriver.ChromeOptions()
    options.binary_location = BROWSER
    for argument in ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--disable-background-networking", "--window-size=1400,1000"]:
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"performance": "ALL", "browser": "ALL"})
    for program in [BROWSER, DRIVER]:
        if not Path(program).exists():
            skip(f"{program} is missing")
    try:
        browser = webdriver.Chrome(service=Service(DRIVER), options=options)
    except WebDriverException as error:
        skip(f"the browser can't be started: {error.msg}")
    browser.set_script_timeout(PATIENCE)
    return browser


class Page:
    """The page in the browser, as its reader sees it."""

    def __init__(self, browser, file):
        self.browser = browser
        self.address = file.as_uri()
        browser.get(self.address)
        self.settle()

    def run(self, script, *arguments):
        return self.browser.execute_script(script, *arguments)

    def settle(self):
        """Waits until all is read, searched and drawn."""
        WebDriverWait(self.browser, PATIENCE, 0.02).until(
            lambda _: self.run("return document.documentElement.dataset.state") == "ready")
        self.browser.execute_async_script(
            "const done = arguments[0];"
            "requestAnimationFrame(() => requestAnimationFrame(() => done()));")

    def find(self, name):
        return self.browser.find_element(By.ID, name)

    def text(self, name):
        return self.find(name).text

    def click(self, name):
        self.find(name).click()
        self.settle()

    def type(self, name, *keys):
        self.find(name).send_keys(*keys)
        self.settle()

    def clear(self, name):
        self.type(name, Keys.CONTROL, "a", Keys.NULL, Keys.BACKSPACE)

    def press(self, *keys):
        """Keys for whatever has the focus."""
        ActionChains(self.browser).send_keys(*keys).perform()
        self.settle()

    def rows(self, kind=""):
        """The cells of the row elements, of those of a class if one is given."""
        return self.run(
            "return Array.from(document.querySelectorAll('.row' + arguments[0]),"
            " (row) => Array.from(row.children, (cell) => cell.textContent))", kind)

    def visibleRows(self):
        """Those that can be seen as a whole."""
        return self.run(
            "const bottom = document.getElementById('lines').getBoundingClientRect().bottom;"
            "return Array.from(document.querySelectorAll('.row'))"
            ".filter((row) => row.getBoundingClientRect().bottom <= bottom)"
            ".map((row) => Array.from(row.children, (cell) => cell.textContent))")

    def selected(self):
        rows = self.rows(".selected")
        return rows[0][5] if rows else None

    def lineCount(self):
        """How many lines are shown, by what assistive programs are told."""
        return int(self.find("grid").get_attribute("aria-rowcount")) - 1

    def focus(self):
        return self.run("return document.activeElement.id")

    def showLevels(self, *wanted):
        for number, name in enumerate(LEVELS):
            box = self.find(f"level{number}")
            if box.is_selected() != (name in wanted):
                box.click()
        self.settle()

    def colours(self):
        """The colours on the timeline, each as [red, green, blue]."""
        return self.run(
            "const canvas = document.getElementById('timeline');"
            "const {width, height} = canvas;"
            "const copy = Object.assign(document.createElement('canvas'), {width, height});"
            "const context = copy.getContext('2d', {willReadFrequently: true});"
            "context.drawImage(canvas, 0, 0);"
            "const {data} = context.getImageData(0, 0, width, height);"
            "const found = new Set();"
            "for (let i = 0; i < data.length; i += 4)"
            " if (data[i + 3] === 255) found.add([data[i], data[i + 1], data[i + 2]].join());"
            "return Array.from(found)")

    def colour(self, name):
        """A colour of the style, in the same form."""
        text = self.run("return getComputedStyle(document.documentElement)"
                        ".getPropertyValue('--' + arguments[0]).trim()", name)
        return ",".join(str(int(text[place:place + 2], 16)) for place in (1, 3, 5))

    def range(self):
        """The texts of the first and the last time of the timeline."""
        begin, end = self.text("range").split(" (")[0].split(" to ")
        return begin, end

    def wheel(self, distance, name, x):
        self.run(
            "const target = document.getElementById(arguments[1]);"
            "const box = target.getBoundingClientRect();"
            "target.dispatchEvent(new WheelEvent('wheel', {deltaY: arguments[0], bubbles: true,"
            " cancelable: true, clientX: box.left + arguments[2], clientY: box.top + 5}))",
            distance, name, x)
        self.settle()


def shows(number):
    return f"order {number} was taken and is now on its way to the store"


def needle(number):
    return f"needle {number} was taken and is now on its way to the store"


def same(found, wanted):
    if found != wanted:
        raise AssertionError(f"{found!r} is not {wanted!r}")


def testShowsTheFirstLines(page):
    rows = page.rows()
    same(page.browser.title, "Test <page> & more")
    same(page.text("timeColumn"), "Time (UTC)")
    same(rows[0], ["2026-11-22 22:10:51.000000", "100 alpha", "-", "start", "-",
                   "===== Logger Start ====="])
    same(rows[1], ["2026-11-22 22:10:51.001000", "101 alpha", "0x000000a1", "overflow", "-",
                   "Event overflow [17]"])
    same(rows[4], ["2026-11-22 22:10:51.004000", "101 alpha", "0x000000a4", "Informational",
                   "Orders::Items", shows(4)])
    same([row[5] for row in rows[7:10]], ["first", "second", "third"])
    same(rows[8][:5], [""] * 5)
    same(rows[10], ["-", "100 alpha", "-", "-", "Orders::Items", shows(8)])
    same(rows[11][3:], ["unreadable", "-", "torn \\x1b[31m\\xff"])
    same(rows[12][1:3], ["102 beta", "0x000000a2"])
    same(page.lineCount(), COUNT + EXTRA_LINES)


def testShowsAPageWithoutItsEnd(page):
    """Cut in the middle of a line."""
    file = Path(unquote(urlsplit(page.address).path))
    text = file.read_text(encoding="utf-8")
    cut = file.with_name("cut.html")
    cut.write_text(text[:text.index(shows(4321)) + 7], encoding="utf-8")
    other = Page(page.browser, cut)
    same(other.lineCount(), 4321 + EXTRA_LINES)
    assert "the end of this page is missing" in other.text("status"), other.text("status")
    other.find("grid").send_keys(Keys.END)
    other.settle()
    same(other.selected(), shows(4320))


def testShowsAnEmptyLog(page):
    """Everything may be pressed, and nothing goes to the console."""
    file = Path(unquote(urlsplit(page.address).path)).with_name("empty.html")
    other = Page(page.browser, file)
    same(other.lineCount(), 0)
    assert "records: 0, lines: 0, shown: 0" in other.text("status"), other.text("status")
    other.press("n", "N", "m", "M", Keys.END, Keys.PAGE_UP, Keys.ENTER, "t", "+", "-", "0")
    other.wheel(-100, "timeline", 700)
    other.wheel(-100, "lines", 300)
    ActionChains(other.browser).click(other.find("timeline")).click(other.find("lines")).perform()
    other.type("search", "x", Keys.ENTER)
    same(other.text("hits"), "0 found")
    other.click("onlyHits")
    other.click("onlyRange")
    same(other.rows(), [])


def testThreadsThatHaveNoRoomShareALane(page):
    """The same page with a thread of its own for each event."""
    file = Path(unquote(urlsplit(page.address).path))
    numbers = iter(range(COUNT))
    text = re.sub(r"\t0x000000a[0-7]\t", lambda _: f"\t0x{next(numbers):08x}\t",
                  file.read_text(encoding="utf-8"))
    many = file.with_name("many.html")
    many.write_text(text, encoding="utf-8")
    other = Page(page.browser, many)
    # The overflow has a thread, too, but is no event. One event is of an unknown thread.
    events = next(numbers) - 1
    same(len(Select(other.find("thread")).options), 1 + 3 + events + 1)
    canvas = other.find("timeline")
    # 14 pixels of marks, 2,000 lanes and the axis.
    same(canvas.size["height"], 14 + 2000 * 4 + 18)
    title = other.run(
        "const canvas = arguments[0];"
        "const box = canvas.getBoundingClientRect();"
        "canvas.dispatchEvent(new PointerEvent('pointermove',"
        " {clientX: box.left + 500, clientY: box.top + 14 + 1999 * 4 + 2}));"
        "return canvas.title", canvas)
    same(title, "further threads")


def testCountsInTheFooter(page):
    text = page.text("status")
    for part in ["records: 5,000, lines: 5,002, shown: 5,002", "lost events: 21 (in places: 2)",
                 "starts: 1, stops: 1, recoveries: 1", "not readable: 1", "without a time: 1"]:
        assert part in text, (part, text)
    assert "missing" not in text, text
    same(page.text("count2"), str(len(errors())))
    same(page.text("count3"), str(sum(map(isWarning, range(COUNT)))))


def testMarkupStaysText(page):
    same(page.rows()[6][5], MARKUP)
    same(page.run("return typeof bad"), "undefined")
    same(page.run("return document.getElementById('bad')"), None)
    page.browser.find_elements(By.CLASS_NAME, "row")[6].click()
    page.settle()
    assert MARKUP in page.text("details"), page.text("details")
    same(page.run("return document.getElementById('bad')"), None)


def testFiltersByLevel(page):
    page.showLevels("Error")
    same([row[5] for row in page.rows()], [needle(number) for number in errors()])
    page.showLevels("marks")
    same([row[3] for row in page.rows()],
         ["start", "overflow", "not-written", "recovery-begin", "recovery-end", "unreadable",
          "stop"])
    page.showLevels("unknown")
    same([row[5] for row in page.rows()], [shows(8)])
    page.showLevels(*LEVELS)
    same(page.lineCount(), COUNT + EXTRA_LINES)


def testFiltersByGroup(page):
    page.showLevels(*LEVELS[:-1])
    page.type("group", "Disk")
    same(page.lineCount(), len(errors()))
    page.type("group", ", Ord?rs")
    same({row[4] for row in page.rows()}, {"Disk", "Orders"})
    page.clear("group")
    page.type("group", "Ord*")
    same({row[4] for row in page.rows()[:15]}, {"Orders", "Orders::Items", ""})
    # All but the marks and the errors.
    same(page.lineCount(), COUNT + EXTRA_LINES - 7 - len(errors()))
    page.clear("group")
    page.type("group", ".*")
    same(page.lineCount(), 0)


def testFiltersByProcessAndThread(page):
    select = Select(page.find("thread"))
    names = [option.text.strip() for option in select.options]
    assert "102 0x000000a5 beta" in names, names
    same(len(names), 1 + 3 + 8 + 1)
    select.select_by_visible_text("process 102 beta")
    page.settle()
    same({row[1] for row in page.rows() if row[1]}, {"102 beta"})
    inProcess = [number for number in range(COUNT) if number % 8 % 3 == 2]
    same(page.lineCount(), len(inProcess))
    thread = next(option for option in select.options if "0x000000a5" in option.text)
    select.select_by_value(thread.get_attribute("value"))
    page.settle()
    same({row[2] for row in page.rows()}, {"0x000000a5"})
    # Record 5 is a mark.
    same(page.lineCount(), len([n for n in range(COUNT) if n % 8 == 5]) - 1)


def testSearches(page):
    page.press("/")
    same(page.focus(), "search")
    page.press("NEEDLE")
    same(page.text("hits"), f"{len(errors())} found")
    page.press(Keys.ENTER)
    same(page.selected(), needle(1000))
    same(page.text("hits"), f"1 of {len(errors())} found")
    same(page.run("return Array.from(document.querySelectorAll('mark'), (m) => m.textContent)"),
         ["needle"])
    page.press(Keys.ESCAPE)
    same(page.focus(), "grid")
    page.press("n")
    same(page.selected(), needle(2000))
    page.press("n", "n", "n")
    same(page.selected(), needle(1000))
    # From a line that is no longer shown.
    page.showLevels("Error")
    page.press(Keys.END)
    page.run("document.getElementById('grid').focus()")
    page.press(Keys.END, "N")
    same(page.selected(), needle(3000))
    page.showLevels(*LEVELS)
    page.run("document.getElementById('grid').focus()")
    page.press(Keys.ARROW_UP)
    same(page.selected(), shows(2999))
    page.showLevels("Error")
    page.press("N")
    same(page.selected(), needle(2000))
    page.press("n")
    same(page.selected(), needle(3000))
    page.showLevels(*LEVELS)
    page.press("n", "n")
    same(page.selected(), needle(1000))
    page.press("N")
    same(page.selected(), needle(4000))
    page.click("previous")
    same(page.selected(), needle(3000))
    page.click("next")
    same(page.selected(), needle(4000))
    page.click("onlyHits")
    same([row[5] for row in page.rows()], [needle(number) for number in errors()])


def testSearchFindsTextNotHeads(page):
    page.type("search", "2026-11")
    same(page.text("hits"), "0 found")
    page.clear("search")
    page.type("search", "third")
    same(page.text("hits"), "1 found")
    page.clear("search")
    page.type("search", ".*")
    same(page.text("hits"), "0 found")
    page.clear("search")
    page.settle()
    same(page.text("hits"), "")


def clickNeedle(page, number):
    row = next(row for row in page.browser.find_elements(By.CLASS_NAME, "row")
               if needle(number) in row.text)
    row.click()
    page.settle()


def testShowsNeighbours(page):
    page.showLevels("Error")
    clickNeedle(page, 2000)
    same(page.lineCount(), len(errors()) + 40)
    same(page.selected(), needle(2000))
    assert page.find("around").is_displayed()
    page.press(Keys.HOME)
    near = [row[5] for row in page.rows(".near")]
    same(near[0], shows(1980))
    page.press(Keys.END)
    near = [row[5] for row in page.rows(".near")]
    same(near[-1], shows(2020))
    page.click("back")
    same([row[5] for row in page.rows()], [needle(number) for number in errors()])
    assert not page.find("around").is_displayed()
    clickNeedle(page, 3000)
    same(page.lineCount(), len(errors()) + 40)
    page.press(Keys.ESCAPE)
    same(page.lineCount(), len(errors()))
    same(page.selected(), needle(3000))
    page.press(Keys.ESCAPE)
    same(page.selected(), None)


def testNeighboursAtTheBegin(page):
    page.showLevels("unknown")
    page.browser.find_elements(By.CLASS_NAME, "row")[0].click()
    page.settle()
    # Records 0 to 28.
    same(page.lineCount(), 29 + EXTRA_LINES)


def testShowsDetails(page):
    page.browser.find_elements(By.CLASS_NAME, "row")[7].click()
    page.settle()
    text = page.text("details")
    for part in ["2026-11-22 22:10:51.007000", "alpha", "0x000000a7", "Informational",
                 "b.log:8", "first\nsecond\nthird"]:
        assert part in text, (part, text)


def testMovesByKeys(page):
    page.find("grid").send_keys(Keys.ARROW_DOWN)
    page.settle()
    same(page.selected(), "===== Logger Start =====")
    page.press(Keys.ARROW_DOWN)
    same(page.selected(), "Event overflow [17]")
    page.press(Keys.ARROW_UP)
    same(page.selected(), "===== Logger Start =====")
    # The event of three lines is one.
    page.press(*[Keys.ARROW_DOWN] * 8)
    same(page.selected(), shows(8))
    page.press(Keys.ARROW_UP)
    same([row[5] for row in page.rows(".selected")], ["first", "second", "third"])
    page.press(Keys.END)
    same(page.selected(), "===== Logger Stop =====")
    same(page.visibleRows()[-1][5], "===== Logger Stop =====")
    pageSize = len(page.visibleRows())
    page.press(Keys.PAGE_UP)
    same(page.selected(), shows(COUNT - 1 - pageSize))
    page.press(Keys.PAGE_DOWN)
    same(page.selected(), "===== Logger Stop =====")
    page.press(Keys.HOME)
    same(page.selected(), "===== Logger Start =====")
    same(page.rows()[0][5], "===== Logger Start =====")
    active = page.find("grid").get_attribute("aria-activedescendant")
    same(page.find(active).get_attribute("aria-selected"), "true")
    page.press("m")
    same(page.selected(), "Event overflow [17]")
    page.press("t")
    same(page.focus(), "timeline")


def testHelp(page):
    page.press("?")
    assert page.find("helpText").is_displayed()
    page.press(Keys.ESCAPE)
    assert not page.find("helpText").is_displayed()
    page.click("help")
    assert page.find("helpText").is_displayed()


def testScrolls(page):
    before = page.rows()[0]
    page.wheel(200, "lines", 300)
    same(page.rows()[0][5], shows(8))
    page.wheel(-200, "lines", 300)
    same(page.rows()[0], before)
    page.run("const lines = document.getElementById('lines'); lines.scrollTop = 1e9")
    page.settle()
    same(page.visibleRows()[-1][5], "===== Logger Stop =====")
    page.run("document.getElementById('lines').scrollTop = 2000")
    page.settle()
    same(page.rows()[0][5], shows(100 - EXTRA_LINES))


def testTimelineZoomsByWheel(page):
    whole = page.range()
    same(whole, ("2026-11-22 22:10:51.000000", "2026-11-22 22:10:55.999000"))
    page.wheel(-100, "timeline", 700)
    begin, end = page.range()
    assert whole[0] < begin < end < whole[1], (begin, end)
    page.wheel(100, "timeline", 700)
    same(page.range(), whole)


def testTimelineZoomsByKeys(page):
    whole = page.range()
    page.type("timeline", "+")
    half = page.range()
    same(half, ("2026-11-22 22:10:52.249750", "2026-11-22 22:10:54.749250"))
    page.press(Keys.ARROW_RIGHT)
    same(page.range(), ("2026-11-22 22:10:52.749650", "2026-11-22 22:10:55.249150"))
    page.press(Keys.ARROW_LEFT)
    same(page.range(), half)
    page.press("-")
    same(page.range(), whole)
    page.press("+", "+")
    page.press("0")
    same(page.range(), whole)
    page.click("zoomIn")
    same(page.range(), half)
    page.click("zoomOut")
    same(page.range(), whole)


def drag(page, begin, end):
    """From one share of the timeline's width to another."""
    canvas = page.find("timeline")
    width = canvas.size["width"]
    plot = width - 150

    def offset(share):
        return int(150 + plot * share - width / 2)
    chain = ActionChains(page.browser)
    chain.move_to_element_with_offset(canvas, offset(begin), 0).click_and_hold()
    chain.move_to_element_with_offset(canvas, offset(end), 0).release().perform()
    page.settle()


def seconds(text):
    return float(text[17:])


def testTimelineZoomsByDragging(page):
    whole = page.range()
    drag(page, 0.2, 0.4)
    begin, end = page.range()
    # 5 s in all; a pixel is 4 ms.
    assert abs(seconds(begin) - 52) < 0.02 and abs(seconds(end) - 53) < 0.02, (begin, end)
    ActionChains(page.browser).double_click(page.find("timeline")).perform()
    page.settle()
    same(page.range(), whole)


def testTimelineLeadsToLines(page):
    canvas = page.find("timeline")
    ActionChains(page.browser).move_to_element_with_offset(canvas, 75, 0).click().perform()
    page.settle()
    time = page.rows(".selected")[0][0]
    assert abs(seconds(time) - 53.5) < 0.02, time


def testOnlyTheTimeShown(page):
    page.type("timeline", "+")
    page.click("onlyRange")
    # 52.249750 to 54.749250
    same(page.rows()[0][0], "2026-11-22 22:10:52.250000")
    same(page.lineCount(), 2500)
    page.type("timeline", "0")
    # All but the record without a time.
    same(page.lineCount(), COUNT + EXTRA_LINES - 1)


def testTimelineHasColours(page):
    names = ["level2", "level3", "level4", "loss", "restart"]
    found = page.colours()
    for name in names:
        assert page.colour(name) in found, name
    page.showLevels("Warning")
    found = page.colours()
    assert page.colour("level3") in found
    for name in ["level2", "level4", "loss", "restart"]:
        assert page.colour(name) not in found, name


def emulate(page, command, **arguments):
    page.browser.execute_cdp_cmd(f"Emulation.{command}", arguments)
    page.settle()


def testDarkMode(page):
    def background():
        return page.run("return getComputedStyle(document.body).backgroundColor")
    try:
        emulate(page, "setEmulatedMedia",
                features=[{"name": "prefers-color-scheme", "value": "light"}])
        same(background(), "rgb(255, 255, 255)")
        light = page.colour("level2")
        emulate(page, "setEmulatedMedia",
                features=[{"name": "prefers-color-scheme", "value": "dark"}])
        same(background(), "rgb(22, 23, 26)")
        assert page.colour("level2") != light
        assert page.colour("level2") in page.colours()
        assert light not in page.colours()
    finally:
        emulate(page, "setEmulatedMedia", features=[])


def testLocalTime(page):
    try:
        emulate(page, "setTimezoneOverride", timezoneId="Asia/Kolkata")
        Select(page.find("zone")).select_by_visible_text("local")
        page.settle()
        same(page.text("timeColumn"), "Time (local)")
        same(page.rows()[0][0], "2026-11-23 03:40:51.000000")
        same(page.range()[0], "2026-11-23 03:40:51.000000")
        Select(page.find("zone")).select_by_visible_text("UTC")
        page.settle()
        same(page.rows()[0][0], "2026-11-22 22:10:51.000000")
    finally:
        emulate(page, "setTimezoneOverride", timezoneId="")


def testControlsHaveNames(page):
    nameless = page.run(
        "return Array.from(document.querySelectorAll('input, select, button, [tabindex=\"0\"]'))"
        ".filter((e) => !(e.labels && e.labels.length) && !e.getAttribute('aria-label')"
        " && e.textContent.trim() === '').map((e) => e.outerHTML)")
    same(nameless, [])


def testFocusIsVisible(page):
    page.press(Keys.TAB)
    same(page.focus(), "search")
    style = page.run("return getComputedStyle(document.activeElement).outlineStyle")
    same(style, "solid")


def testPolicyForbidsEverything(page):
    refused = page.browser.execute_async_script(
        "const done = arguments[0];"
        "const refused = [];"
        "document.addEventListener('securitypolicyviolation', (event) => {"
        " refused.push(event.effectiveDirective);"
        " if (refused.length === 4) done(refused.sort()); });"
        "const add = (name, properties) =>"
        " document.body.append(Object.assign(document.createElement(name), properties));"
        "add('img', {src: 'other.png'});"
        "add('script', {textContent: 'bad = 1'});"
        "add('style', {textContent: 'p {}'});"
        "fetch('other.txt').catch(() => {});")
    same(refused, ["connect-src", "img-src", "script-src-elem", "style-src-elem"])
    same(page.run("return typeof bad"), "undefined")
    # What the browser says about these is no error of the page.
    page.browser.get_log("browser")


def testReadableWithoutScripts(page):
    try:
        page.browser.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": True})
        page.browser.get(page.address)
        assert not page.find("viewer").is_displayed()
        blocks = page.browser.find_elements(By.CSS_SELECTOR, "#log pre")
        text = "\n".join(block.text for block in blocks[:4])
        for part in ["2026-11-22 22:10:51.000000Z", MARKUP, "===== Logger Start ====="]:
            assert part in text, part
        assert "beta" in page.text("log"), page.text("log")[:200]
        last = blocks[-1]
        page.run("arguments[0].scrollIntoView(false)", last)
        assert "===== Logger Stop =====" in last.text
        assert "lost events 21" in page.text("totals"), page.text("totals")
    finally:
        page.browser.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": False})


def testAMillionLines(page, file):
    page = Page(page.browser, file)
    lines = BIG_COUNT + EXTRA_LINES

    def check():
        count = page.run("return document.querySelectorAll('.row, .row *').length / 7")
        assert len(page.visibleRows()) <= count < MOST_ROWS, count
    same(page.lineCount(), lines)
    check()
    page.find("grid").send_keys(Keys.END)
    page.settle()
    same(page.selected(), "===== Logger Stop =====")
    check()
    page.run("const lines = document.getElementById('lines');"
             "lines.scrollTop = (lines.scrollHeight - lines.clientHeight) / 2")
    page.settle()
    number = int(page.rows()[0][5].split()[1])
    assert abs(number - BIG_COUNT / 2) < 1000, number
    check()
    # One row at a time where the bar is too coarse for that.
    page.wheel(20, "lines", 300)
    same(int(page.rows()[0][5].split()[1]), number + 1)
    page.type("search", "needle")
    same(page.text("hits"), f"{len(errors(BIG_COUNT)):,} found")
    page.click("onlyHits")
    same(page.lineCount(), len(errors(BIG_COUNT)))
    check()
    page.click("onlyHits")
    clickRow = page.browser.find_elements(By.CLASS_NAME, "row")[3]
    clickRow.click()
    page.settle()
    same(len(page.rows(".selected")), 1)
    check()


def checkRequests(browser, addresses):
    """No request but for the pages themselves."""
    for entry in browser.get_log("performance"):
        message = json.loads(entry["message"])["message"]
        if message["method"] != "Network.requestWillBeSent":
            continue
        url = message["params"]["request"]["url"]
        # This one the policy refuses, and a test wants to see that.
        if url not in addresses and not url.startswith("data:"):
            raise AssertionError(f"requested: {url}")


def checkConsole(browser):
    found = [entry["message"] for entry in browser.get_log("browser")]
    if found:
        raise AssertionError(f"on the console: {found}")


def runTest(browser, test, small, big):
    others = [small.with_name(name) for name in ("cut.html", "empty.html", "many.html")]
    addresses = [file.as_uri() for file in (small, big, *others)]
    browser.get_log("performance")
    page = Page(browser, small)
    if test is testAMillionLines:
        test(page, big)
    else:
        test(page)
    checkConsole(browser)
    if test is not testPolicyForbidsEverything:
        checkRequests(browser, addresses)


def runTests(browser, tests, small, big):
    failed = 0
    for test in tests:
        try:
            runTest(browser, test, small, big)
            print(f"passed: {test.__name__}", flush=True)
        except (AssertionError, WebDriverException, LookupError, ValueError, StopIteration):
            failed += 1
            print(f"FAILED: {test.__name__}")
            traceback.print_exc(file=sys.stdout)
    print(f"{len(tests) - failed} passed, {failed} failed")
    return 1 if failed else 0


def makePages(maker, wanted):
    for file, count in wanted:
        subprocess.run([maker, str(file), str(count)], check=True, stdout=subprocess.DEVNULL)


def main(maker, *names):
    tests = [value for name, value in globals().items()
             if name.startswith("test") and callable(value) and (not names or name in names)]
    browser = startBrowser()
    try:
        with tempfile.TemporaryDirectory() as folder:
            small, big = Path(folder, "small.html"), Path(folder, "big.html")
            makePages(maker, [(small, COUNT), (big, BIG_COUNT),
                              (small.with_name("empty.html"), 0)])
            return runTests(browser, tests, small, big)
    finally:
        browser.quit()


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
