"""Takes the picture of a web page for the guide.

Usage: picture.py HTML PNG
"""

import os
import sys
import tempfile

import chromium

page, picture = map(os.path.abspath, sys.argv[1:])
with tempfile.TemporaryDirectory() as profile:
    browser = chromium.start(profile)
    chromium.set_screen(browser, 1400, 860)
    browser.get(f"file://{page}#label-8")
    browser.save_screenshot(picture)
    browser.quit()
