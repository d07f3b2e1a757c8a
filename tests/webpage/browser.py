"""The web page in a real browser: Debian's Chromium, driven by its WebDriver.

Usage: browser.py QUILLET_CLI FOLDER
FOLDER gets screenshots to look at.
"""

import base64
import os
import re
import struct
import subprocess
import sys
import tempfile
import unittest

import html5lib
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.wait import WebDriverWait

import chromium

TOOL, SCREENSHOTS = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
ATTACK = "<script>alert(1)<b> '&amp;\""
LABEL_SIZE = 32
TIMEOUT_SECONDS = 20

# Page, value, text, border, x, y. Labels are far enough apart to be compared one by one.
LABELS = [
    (1, 1, "", "none", 60, 60), (1, 2, "", "square", 160, 60), (1, 3, "", "ellipse", 260, 60),
    (1, 4, "", "triangle", 360, 60), (1, 5, "", "diamond", 460, 60),
    (1, 6, "long", "square", 60.25, 160.75), (1, 1234567, "", "ellipse", 160.5, 160.5),
    (1, 8, "much too long for a label", "diamond", 260, 160), (1, 9, ATTACK, "triangle", 360, 160),
    (1, 10, "漏水", "square", 460, 160), (1, -11, "", "diamond", 560, 300), (1, 12, "تسرب", "none", 60, 300),
    (2, 21, "", "ellipse", 5, 150), (2, 22, "", "square", 396.5, 290.25),
]
ROWS = [(page, value, f"Finding {value}\nsecond line", "high" if value % 2 else "low")
        for page, value, *_ in LABELS]
ROWS[8] = (1, 9, ATTACK, "")
ROWS[9] = (1, 10, "墙体渗水，需要修理", "high")


def run(*command):
    """The standard output of a command, which has to succeed."""
    return subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout


def write_table(path, heading, rows):
    with open(path, "w", encoding="utf-8", newline="") as file:
        for row in [heading, *rows]:
            file.write(",".join('"' + str(field).replace('"', '""') + '"' for field in row) + "\r\n")


def make_document(folder):
    """Exports a document of two pages as a web page and as images; their paths."""
    images = [os.path.join(folder, name + ".png") for name in (ATTACK.replace("/", ""), "Ground floor")]
    run("convert", "-size", "600x800", "xc:white", "-fill", "black", "-draw",
        "rectangle 500,700 519,709", "png24:" + images[0])
    run("convert", "-size", "400x300", "xc:white", "png24:" + images[1])
    items, findings = os.path.join(folder, "items.csv"), os.path.join(folder, "findings.csv")
    write_table(items, ("page", "value", "text", "border", "x", "y"), LABELS)
    write_table(findings, ("page", "value", "Finding", ATTACK), ROWS)
    empty, document = os.path.join(folder, "empty.quillet"), os.path.join(folder, "a.quillet")
    run(TOOL, "create", *images, "--names-from-files", "--output", empty)
    run(TOOL, "import-items", empty, "--csv", items, "--output", document)
    page = os.path.join(folder, "report.html")
    run(TOOL, "export-html", document, "--findings", findings, "--title", ATTACK, "--output", page)
    return page, export_pictures(document, os.path.join(folder, "pictures"))


def export_pictures(document, folder):
    """Exports the pages of a document as images; their paths in the order of the pages."""
    os.mkdir(folder)
    run(TOOL, "export-images", document, "--folder", folder)
    # The running number is the last digit of the name.
    return sorted((os.path.join(folder, name) for name in os.listdir(folder)), key=lambda path: path[-5])


def turned_by_camera(jpeg):
    """Adds EXIF data to a JPEG image that has viewers turn it by a quarter."""
    tag = struct.pack(">HHIHH", 0x0112, 3, 1, 6, 0)
    exif = b"Exif\0\0MM\0*" + struct.pack(">IH", 8, 1) + tag + bytes(4)
    return jpeg[:2] + b"\xff\xe1" + struct.pack(">H", len(exif) + 2) + exif + jpeg[2:]


def field(content):
    """Bytes as a project file stores them."""
    return struct.pack("<I", len(content)) + content


def make_photograph(folder):
    """Exports a document whose image is a JPEG file with an orientation; the paths of both exports."""
    image, document = os.path.join(folder, "photograph.png"), os.path.join(folder, "photograph.quillet")
    run("convert", "-size", "300x200", "xc:white", "-fill", "black", "-draw",
        "rectangle 200,120 219,129", image)
    run(TOOL, "create", image, "--output", document)
    with open(image, "rb") as file:
        png = field(file.read())
    with open(document, "rb") as file:
        project = file.read()
    assert project.count(png) == 1
    with open(document, "wb") as file:
        file.write(project.replace(png, field(turned_by_camera(run("convert", image, "jpeg:-")))))
    page = os.path.join(folder, "photograph.html")
    run(TOOL, "export-html", document, "--output", page)
    return page, export_pictures(document, os.path.join(folder, "photographs"))[0]


def make_page_with_cells(folder, name, cells):
    """Exports a document with a finding of these cells and a last column; the path."""
    image, items, findings, empty, document, page = (
        os.path.join(folder, f"{name}." + suffix)
        for suffix in ("png", "items.csv", "findings.csv", "empty.quillet", "quillet", "html"))
    run("convert", "-size", "300x200", "xc:white", image)
    write_table(items, ("page", "value", "x", "y"), [(1, 1, 50, 50)])
    headings = (f"Text {number}" for number in range(len(cells)))
    write_table(findings, ("page", "value", *headings, "Due"), [(1, 1, *cells, "Monday")])
    run(TOOL, "create", image, "--output", empty)
    run(TOOL, "import-items", empty, "--csv", items, "--output", document)
    run(TOOL, "export-html", document, "--findings", findings, "--output", page)
    return page


class Picture:
    """Brightness of the pixels of a PNG file."""

    def __init__(self, png):
        header = subprocess.run(["identify", "-format", "%w %h", "-"], input=png, check=True,
                                stdout=subprocess.PIPE).stdout
        self.width, self.height = map(int, header.split())
        self.pixels = subprocess.run(["convert", "-", "-depth", "8", "gray:-"], input=png,
                                     check=True, stdout=subprocess.PIPE).stdout

    def dark_box(self, left, top, right, bottom):
        """The box around all pixels in a part that are not white: left, top, right, bottom."""
        columns, rows = [], []
        for y in range(max(0, top), min(bottom, self.height)):
            for x in range(max(0, left), min(right, self.width)):
                if self.pixels[y * self.width + x] < 215:
                    columns.append(x)
                    rows.append(y)
        return (min(columns), min(rows), max(columns), max(rows)) if columns else None


class TestWebPage(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        os.makedirs(SCREENSHOTS, exist_ok=True)
        room = tempfile.TemporaryDirectory()
        cls.addClassCleanup(room.cleanup)
        cls.path, cls.pictures = make_document(room.name)
        cls.photograph = make_photograph(room.name)
        link = "https://files.example/" + "Quillet0" * 30
        cls.page_with_a_link = make_page_with_cells(room.name, "link", [link])
        cls.page_with_six_links = make_page_with_cells(room.name, "six-links", [link] * 6)
        cls.page_with_thirty_columns = make_page_with_cells(room.name, "columns", ["Quillet"] * 29)
        cls.page_with_a_sentence = make_page_with_cells(
            room.name, "sentence", ["A sentence that is long enough to take more than one line. " * 9])
        cls.browser = chromium.start(os.path.join(room.name, "profile"))
        cls.addClassCleanup(cls.browser.quit)

    def setUp(self):
        self.show(1800, 1300)

    def tearDown(self):
        self.assertEqual(self.browser.get_log("browser"), [])

    def show(self, width, height, scheme="light", phone=False, fragment=""):
        chromium.set_screen(self.browser, width, height, scheme, phone)
        self.browser.get("about:blank")
        self.browser.get_log("performance")
        self.browser.get("file://" + self.path + fragment)

    def command(self, name, **parameters):
        return self.browser.execute_cdp_cmd(name, parameters)

    def script(self, source, *arguments):
        return self.browser.execute_script(source, *arguments)

    def find(self, selector):
        return self.browser.find_element(By.CSS_SELECTOR, selector)

    def texts(self, selector):
        return self.script("return [...document.querySelectorAll(arguments[0])]"
                           ".map(element => element.textContent)", selector)

    def ids(self, selector):
        return self.script("return [...document.querySelectorAll(arguments[0])]"
                           ".map(element => element.id)", selector)

    def shown_rows(self):
        return self.ids(".finding:not([hidden])")

    def press(self, *keys):
        ActionChains(self.browser).send_keys(*keys).perform()

    def focus(self):
        """Id, destination or class of what has the focus."""
        return self.script("const e = document.activeElement;"
                           "return e.id || e.getAttribute('href') || e.tagName")

    def wait_until_visible(self, selector):
        """Waits until an element is within the window and, if it scrolls, within its panel."""
        source = """const box = document.querySelector(arguments[0]).getBoundingClientRect();
                    return box.top >= 0 && box.bottom <= innerHeight && box.height > 0"""
        WebDriverWait(self.browser, TIMEOUT_SECONDS).until(lambda _: self.script(source, selector))

    def assert_chosen(self, number):
        self.assertEqual(self.ids(".chosen"), [f"row-{number}"])
        self.assertEqual(self.ids("a.label[aria-current]"), [f"label-{number}"])
        self.assertEqual(self.script("return [...document.querySelectorAll('.finding a[aria-current]')]"
                                     ".map(a => a.hash)"), [f"#label-{number}"])

    def screenshot(self, name):
        self.browser.save_screenshot(os.path.join(SCREENSHOTS, name + ".png"))

    def sheet_picture(self, number):
        """What the browser shows of a page, each pixel of the page as one pixel."""
        box = self.script("""const sheet = document.querySelectorAll('.sheet')[arguments[0] - 1];
                             const box = sheet.getBoundingClientRect();
                             return {x: box.x + scrollX, y: box.y + scrollY,
                                     width: box.width, height: box.height}""", number)
        shot = self.command("Page.captureScreenshot", clip={**box, "scale": 1},
                            captureBeyondViewport=True)
        return Picture(base64.b64decode(shot["data"]))

    def compare_boxes(self, shown, exported, part):
        exported_box = exported.dark_box(*part)
        shown_box = shown.dark_box(*part)
        self.assertIsNotNone(exported_box, part)
        self.assertIsNotNone(shown_box, part)
        for shown_edge, exported_edge in zip(shown_box, exported_box):
            self.assertLessEqual(abs(shown_edge - exported_edge), 1,
                                 f"in {part}: {shown_box} instead of {exported_box}")

    def test_labels_are_where_exported_images_have_them(self):
        # The second page is wider than its image: labels reach beyond the left and lower edges.
        for number, path in enumerate(self.pictures, 1):
            with open(path, "rb") as file:
                exported = Picture(file.read())
            shown = self.sheet_picture(number)
            self.assertEqual((shown.width, shown.height), (exported.width, exported.height))
            left = 5 - (LABEL_SIZE + 5) // 2 if number == 2 else 0
            for _, _, _, _, x, y in (label for label in LABELS if label[0] == number):
                x, y, room = int(x) - left, int(y), LABEL_SIZE * 3 // 4
                self.compare_boxes(shown, exported, (x - room, y - room, x + room, y + room))
            # So is the page image, which has a mark.
            if number == 1:
                self.compare_boxes(shown, exported, (480, 680, 540, 730))

    def test_the_orientation_of_a_camera_does_not_turn_the_image(self):
        path, picture = self.photograph
        self.browser.get("file://" + path)
        with open(picture, "rb") as file:
            exported = Picture(file.read())
        shown = self.sheet_picture(1)
        self.assertEqual((shown.width, shown.height), (300, 200))
        self.compare_boxes(shown, exported, (180, 100, 240, 150))

    def test_user_texts_are_displayed_as_they_are(self):
        self.assertEqual(self.browser.title, ATTACK)
        self.assertEqual(self.texts("h1"), [ATTACK])
        self.assertEqual(self.texts(".page h2"), [ATTACK, "Ground floor"])
        self.assertEqual(self.texts("thead th"), ["No.", "Label", "Finding", ATTACK])
        self.assertEqual(self.texts("#row-9 > *"), ["9", ATTACK, ATTACK, ""])
        self.assertEqual(self.texts("#row-10 td")[1], "墙体渗水，需要修理")
        self.assertEqual(self.texts("#label-3 text"), ["3"])
        self.assertEqual(self.texts("#label-8 text"), ["*"])

    def test_a_click_on_a_label_highlights_its_row(self):
        self.find("#label-14").click()
        self.assert_chosen(14)
        self.wait_until_visible("#row-14")
        self.find("#label-13").click()
        self.assert_chosen(13)

    def test_a_click_on_a_row_highlights_its_label(self):
        self.find("#row-14 td").click()
        self.assert_chosen(14)
        self.wait_until_visible("#label-14")
        self.find("#row-2 a").click()
        self.assert_chosen(2)
        self.wait_until_visible("#label-2")

    def test_a_click_beside_the_labels_highlights_nothing(self):
        self.find("#label-5").click()
        ActionChains(self.browser).move_to_element_with_offset(
            self.find(".sheet"), 0, 100).click().perform()
        self.assertEqual(self.ids(".chosen, .label[aria-current]"), [])

    def test_the_filter_shows_rows_that_have_all_words(self):
        everything = [f"row-{number}" for number in range(1, len(LABELS) + 1)]
        self.assertEqual(self.shown_rows(), everything)
        self.assertEqual(self.texts("#count"), ["14 of 14"])
        self.find("#filter").send_keys("HIGH finding 2")
        self.assertEqual(self.shown_rows(), ["row-7", "row-13"])
        self.assertEqual(self.texts("#count"), ["2 of 14"])
        self.assertEqual(self.ids(".label:not(.out)"), ["label-7", "label-13"])
        self.press(Keys.CONTROL, "a")
        self.find("#filter").clear()
        self.find("#filter").send_keys("墙体")
        self.assertEqual(self.shown_rows(), ["row-10"])
        # The names of pages count as well; the group of a page without rows is hidden.
        self.find("#filter").clear()
        self.find("#filter").send_keys("ground")
        self.assertEqual(self.shown_rows(), ["row-13", "row-14"])
        self.assertEqual(self.script("return document.querySelectorAll('tbody:not([hidden])').length"), 1)
        self.find("#filter").clear()
        self.find("#filter").send_keys(" ")
        self.assertEqual(self.shown_rows(), everything)

    def test_the_tabulator_key_goes_through_the_page_in_its_order(self):
        stops = []
        for _ in range(8):
            self.press(Keys.TAB)
            stops.append(self.focus())
        self.assertEqual(stops, ["#findings", "#page-1", "#page-2", "label-1", "label-13", "filter",
                                 "#page-1", "#label-1"])

    def test_arrow_keys_go_from_label_to_label_and_from_row_to_row(self):
        self.script("document.getElementById('label-1').focus()")
        self.press(Keys.ARROW_RIGHT, Keys.ARROW_DOWN)
        self.assertEqual(self.focus(), "label-3")
        self.assert_chosen(3)
        self.press(Keys.END)
        self.assert_chosen(12)
        self.press(Keys.ARROW_DOWN)
        self.assert_chosen(12)
        self.press(Keys.HOME, Keys.ARROW_LEFT)
        self.assert_chosen(1)
        self.script("document.querySelector('#row-1 a').focus()")
        self.press(Keys.ARROW_DOWN)
        self.assert_chosen(2)
        self.assertEqual(self.focus(), "#label-2")
        self.press(Keys.ESCAPE)
        self.assertEqual(self.ids(".chosen"), [])

    def test_the_enter_key_chooses_as_a_click_does(self):
        self.script("document.getElementById('label-13').focus()")
        self.press(Keys.ENTER)
        self.assert_chosen(13)
        self.script("document.querySelector('#row-2 a').focus()")
        self.press(Keys.ENTER)
        self.assert_chosen(2)

    def test_labels_that_are_filtered_out_are_skipped(self):
        self.find("#filter").send_keys("low")
        self.script("document.getElementById('label-2').focus()")
        self.press(Keys.ARROW_DOWN)
        self.assert_chosen(4)

    def test_a_link_to_a_label_opens_the_page_there(self):
        self.show(1200, 500, fragment="#label-14")
        self.assert_chosen(14)
        self.wait_until_visible("#label-14")
        self.wait_until_visible("#row-14")

    def test_a_thumbnail_leads_to_its_page(self):
        self.show(1200, 500)
        self.find(".thumbnail[href='#page-2']").click()
        self.wait_until_visible("#title-2")
        WebDriverWait(self.browser, TIMEOUT_SECONDS).until(
            lambda _: self.script("return document.querySelector('.thumbnail[aria-current]').hash") == "#page-2")

    def test_nothing_is_requested(self):
        log = self.browser.get_log("performance")
        urls = re.findall(r'"Network.requestWillBeSent".*?"url":"([^"]*)', "\n".join(
            entry["message"] for entry in log))
        self.assertTrue(urls)
        for url in urls:
            self.assertRegex(url, r"^(data:|about:blank|file://.*/report\.html)")

    def test_the_policy_stops_what_is_not_its_own(self):
        violations = self.browser.execute_async_script("""
            const done = arguments[0], violations = [];
            addEventListener('securitypolicyviolation', event => {
                violations.push(event.effectiveDirective);
                if (violations.length === 3)
                    done(violations.sort());
            });
            document.body.insertAdjacentHTML('beforeend',
                '<img src="http://127.0.0.1:1/a.png"><p style="color: red">x</p>');
            const script = document.createElement('script');
            script.textContent = 'document.title = "changed"';
            document.body.append(script);""")
        self.assertEqual(violations, ["img-src", "script-src-elem", "style-src-attr"])
        self.assertEqual(self.browser.title, ATTACK)
        self.browser.get_log("browser")

    def print(self, name):
        """Prints to a PDF on A4; its path and text."""
        pdf = self.command("Page.printToPDF", preferCSSPageSize=True, paperWidth=8.27, paperHeight=11.69)
        path = os.path.join(SCREENSHOTS, name + ".pdf")
        with open(path, "wb") as file:
            file.write(base64.b64decode(pdf["data"]))
        return path, run("pdftotext", "-layout", path, "-").decode()

    def test_printed_it_has_the_pages_and_the_whole_list(self):
        path, text = self.print("print")
        for page, value, finding, _ in ROWS:
            self.assertIn(finding.split("\n")[0], text)
        self.assertNotIn("Filter", text)
        self.assertEqual(run("pdfinfo", path).decode().count("Pages:           3\n"), 1)

    def test_a_long_link_does_not_hide_the_columns_after_it(self):
        self.browser.get("file://" + self.page_with_a_link)
        for width in (1000, 1200, 1800):
            chromium.set_screen(self.browser, width, 900)
            cell, rows = (self.script("return document.querySelector(arguments[0])"
                                      ".getBoundingClientRect().right", selector)
                          for selector in ("#row-1 td:last-child", ".rows"))
            self.assertLessEqual(cell, rows, f"on a screen of {width}")
        self.screenshot("long-link")

    def test_long_links_are_printed_with_the_columns_after_them(self):
        self.browser.get("file://" + self.page_with_six_links)
        text = self.print("print-links")[1]
        self.assertIn("Monday", text)
        self.assertEqual(text.count("Q"), 6 * 30)

    def test_all_of_many_columns_are_printed(self):
        self.browser.get("file://" + self.page_with_thirty_columns)
        text = self.print("print-columns")[1]
        self.assertEqual(text.count("Q"), 29)
        # "Monday" takes several lines.
        self.assertRegex(text, r"ay\s*$")

    def test_a_long_text_is_printed_wider_than_a_short_one(self):
        self.browser.get("file://" + self.page_with_a_sentence)
        text = self.print("print-sentence")[1]
        # The 9 sentences need fewer lines than there are, and the short word is not broken.
        self.assertLess(text.count("\n", text.index("A sentence"), text.rindex("line.")), 7)
        self.assertIn("Monday", text)

    def test_on_a_phone_everything_fits_and_a_card_shows_the_chosen_row(self):
        for width in (320, 390):
            self.show(width, 700, phone=True)
            self.assertEqual(self.script("return document.documentElement.scrollWidth"), width)
            self.find("#label-5").click()
            self.assertEqual(self.texts("#card dd"), ["5", "Finding 5\nsecond line", "high"])
            self.wait_until_visible("#card")
            self.wait_until_visible("#label-5")
            row = self.find("#row-14 td")
            self.script("arguments[0].scrollIntoView({block: 'center'})", row)
            row.click()
            self.wait_until_visible("#label-14")

    def test_everything_has_a_name_and_a_role_for_screen_readers(self):
        nodes = self.command("Accessibility.getFullAXTree")["nodes"]
        roles = {}
        for node in nodes:
            if not node.get("ignored"):
                name = node.get("name", {}).get("value", "")
                roles.setdefault(node["role"]["value"], []).append(name)
        for role in ("link", "image", "searchbox", "navigation", "complementary", "heading", "group"):
            self.assertTrue(roles.get(role), role)
            self.assertNotIn("", roles[role], role)
        self.assertEqual(len(roles["main"]), 1)
        self.assertEqual(len(roles["table"]), 1)
        self.assertEqual(len(roles["rowheader"]), len(LABELS) + 2)
        self.assertIn("Label 10\n漏水\n墙体渗水，需要修理\nhigh".split("\n")[3],
                      next(name for name in roles["link"] if "漏水" in name))
        self.assertEqual(self.script("return document.documentElement.lang"), "en")

    def test_texts_have_enough_contrast(self):
        # 4.5 to 1 is what WCAG asks for (level AA).
        for scheme in ("light", "dark"):
            self.show(1800, 1300, scheme)
            self.find("#label-2").click()
            faint = self.script(CONTRAST)
            self.assertEqual(faint, [], scheme)

    def test_validators_find_nothing(self):
        with open(self.path, "rb") as file:
            html5lib.HTMLParser(strict=True).parse(file)
        tidy = subprocess.run(["tidy", "-quiet", "-errors", self.path], stderr=subprocess.PIPE, text=True)
        # It takes links within SVG for links of HTML without any attributes.
        complaints = [line for line in tidy.stderr.splitlines()
                      if not re.search(r'<a> proprietary attribute "(class|id|href|transform)"$', line)]
        self.assertEqual(complaints, [])

    def test_screenshots(self):
        for name, width, height, scheme, phone in (
                ("wide", 1500, 950, "light", False), ("wide-dark", 1500, 950, "dark", False),
                ("medium", 1000, 800, "light", False), ("narrow", 390, 800, "light", True),
                ("narrow-dark", 390, 800, "dark", True)):
            self.show(width, height, scheme, phone, "#label-3")
            self.screenshot(name)
            self.assertGreater(os.path.getsize(os.path.join(SCREENSHOTS, name + ".png")), 10000)


# All texts outside of the pages whose colour is too close to the one behind them.
CONTRAST = r"""
const channels = color => color.match(/[\d.]+/g).map(Number);
const luminance = color => {
    const [r, g, b] = channels(color).slice(0, 3).map(c => c / 255)
        .map(c => c <= .04045 ? c / 12.92 : ((c + .055) / 1.055) ** 2.4);
    return .2126 * r + .7152 * g + .0722 * b;
};
const ground = element => {
    for (; element; element = element.parentElement) {
        const color = getComputedStyle(element).backgroundColor;
        if (channels(color)[3] !== 0)
            return color;
    }
    return 'rgb(255, 255, 255)';
};
const faint = [];
for (const element of document.querySelectorAll('body *:not(svg, svg *, script)')) {
    const hasText = [...element.childNodes].some(node => node.nodeType === 3 && node.data.trim());
    if (!hasText || element.offsetParent === null && element.tagName !== 'DL')
        continue;
    const [a, b] = [luminance(getComputedStyle(element).color), luminance(ground(element))];
    const contrast = (Math.max(a, b) + .05) / (Math.min(a, b) + .05);
    if (contrast < 4.5)
        faint.push(element.textContent + ': ' + contrast);
}
return faint;
"""

if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
