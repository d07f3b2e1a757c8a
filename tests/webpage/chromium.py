"""Starts Debian's Chromium without a window, to be driven by its WebDriver."""

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service


def start(profile):
    """Returns the browser. The profile is a new folder, and requests and messages are logged."""
    options = Options()
    options.binary_location = "/usr/bin/chromium"
    for argument in ("--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
                     "--disable-background-networking", "--disable-component-update",
                     "--disable-sync", "--user-data-dir=" + profile):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def set_screen(browser, width, height, scheme="light", phone=False):
    """Sets the size of the window in CSS pixels and the colour scheme, and stops animations."""
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
        "width": width, "height": height, "deviceScaleFactor": 2 if phone else 1, "mobile": phone})
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [
        {"name": "prefers-color-scheme", "value": scheme},
        {"name": "prefers-reduced-motion", "value": "reduce"}]})
