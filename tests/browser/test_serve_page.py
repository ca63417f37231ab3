"""The `prsm serve` page in a headless browser, used as a person would: edit a block's clock and see the
total `prsm estimate` gives for the same edit, type a value the engine refuses and see it marked, add a
block from the drop-down, save and reopen the design, and a request under a foreign Host refused.
Skips, saying why, where chromium, its driver or selenium is not installed."""

import json
import os
import shutil
import subprocess
import urllib.error
import urllib.request

import pytest

webdriver = pytest.importorskip("selenium.webdriver", reason="python3-selenium is not installed")
from selenium.webdriver.common.by import By  # noqa: E402
from selenium.webdriver.support.ui import Select, WebDriverWait  # noqa: E402

HOST = os.environ.get("PRSM_HOST", "prsm")
EXAMPLES = os.environ.get("PRSM_EXAMPLES", "examples")
ARTEFACTS = os.environ.get("PRSM_ARTEFACTS", ".")
BLOCK = "front end LUTs"


def chromium_driver():
    if not shutil.which("chromedriver"):
        pytest.skip("chromium-driver is not installed")
    options = webdriver.ChromeOptions()
    for argument in ("--headless", "--no-sandbox", "--disable-gpu", "--window-size=1400,1000"):
        options.add_argument(argument)
    return webdriver.Chrome(options=options)


@pytest.fixture
def served(tmp_path):
    shutil.copy(os.path.join(EXAMPLES, "accelerator.json"), tmp_path)
    server = subprocess.Popen([HOST, "serve", "accelerator.json", "--port", "0"], cwd=tmp_path,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    line = server.stdout.readline()
    assert "http://127.0.0.1:" in line, line
    url = line.split(" at ")[1].split()[0]
    yield url, tmp_path
    server.terminate()
    server.wait()


def shown_total(driver):
    """The page's total; read in one step, as the figures are replaced on every update."""
    return driver.execute_script("const b = document.querySelector('#totals b'); return b ? b.textContent : '';")


def estimated_total(path):
    """The total `prsm estimate` prints for a design file, as the page shows it."""
    report = json.loads(subprocess.run([HOST, "estimate", str(path), "--json"], capture_output=True,
                                       text=True).stdout)
    return f"{report['totals']['total_power']:.4f} W"


def test_a_person_edits_adds_saves_and_reopens(served):
    url, folder = served
    driver = chromium_driver()
    wait = WebDriverWait(driver, 10)
    try:
        driver.get(url)
        total = lambda: shown_total(driver)  # noqa: E731
        wait.until(lambda d: total().endswith(" W"))

        # The same edit in a file, through the command line.
        design = json.loads((folder / "accelerator.json").read_text())
        design["blocks"][0]["inputs"]["CLOCK_FREQ"] = 500
        (folder / "edited.json").write_text(json.dumps(design))
        expected = estimated_total(folder / "edited.json")
        assert total() != expected

        driver.find_element(By.XPATH, f"//span[@class='name'][starts-with(., '{BLOCK} ')]").click()
        clock = wait.until(lambda d: d.find_element(By.CSS_SELECTOR, "[data-cell='CLOCK_FREQ']"))
        clock.clear()
        clock.send_keys("500")
        wait.until(lambda d: total() == expected)

        clock.send_keys("x")  # "500x" is no number: refused, marked with the reason
        wait.until(lambda d: "invalid" in clock.get_attribute("class"))
        assert "CLOCK_FREQ" in clock.find_element(By.XPATH, "following-sibling::span[1]").text
        assert total() == expected  # the refused value changed nothing

        Select(driver.find_element(By.ID, "add-model")).select_by_value("TalvexCleLogic")
        driver.find_element(By.ID, "add").click()
        wait.until(lambda d: d.find_elements(By.XPATH, "//span[@class='name'][starts-with(., 'talvexclelogic ')]"))

        save = driver.find_element(By.ID, "save-file")
        save.clear()
        save.send_keys("saved.json")
        driver.find_element(By.ID, "save").click()
        wait.until(lambda d: (folder / "saved.json").exists())
        saved = json.loads((folder / "saved.json").read_text())
        assert saved["blocks"][0]["inputs"]["CLOCK_FREQ"] == 500
        assert saved["blocks"][-1]["model"] == "TalvexCleLogic"

        wait.until(lambda d: "saved.json" in d.find_element(By.ID, "open-file").text)
        Select(driver.find_element(By.ID, "open-file")).select_by_value("saved.json")
        driver.find_element(By.ID, "open").click()
        wait.until(lambda d: d.find_element(By.ID, "source").text == "saved.json")
        assert total() == estimated_total(folder / "saved.json")

        os.makedirs(ARTEFACTS, exist_ok=True)
        driver.save_screenshot(os.path.join(ARTEFACTS, "serve-page.png"))
    finally:
        driver.quit()


def test_a_foreign_host_is_refused(served):
    url, _ = served
    request = urllib.request.Request(url + "api/report", headers={"Host": "rebound.example"})
    with pytest.raises(urllib.error.HTTPError) as refused:
        urllib.request.urlopen(request)
    assert refused.value.code == 403


@pytest.fixture
def served_large(tmp_path):
    """A 1,000-block design: the example's logic block, each with its own name and clock, at a given
    junction temperature."""
    design = json.loads(open(os.path.join(EXAMPLES, "accelerator.json")).read())
    logic = design["blocks"][0]
    design["thermal"] = {"junction_temperature": 85}  # at 1.3 degC/W this much power would run away
    design["blocks"] = [dict(logic, name=f"logic {i}", inputs=dict(logic["inputs"], CLOCK_FREQ=150 + i % 300))
                        for i in range(1000)]
    (tmp_path / "large.json").write_text(json.dumps(design))
    server = subprocess.Popen([HOST, "serve", "large.json", "--port", "0"], cwd=tmp_path,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    yield server.stdout.readline().split(" at ")[1].split()[0]
    server.terminate()
    server.wait()


def test_an_edit_on_a_large_design_is_measured(served_large):
    """The time from a keystroke to the new totals on screen, written as a figure, not asserted."""
    driver = chromium_driver()
    wait = WebDriverWait(driver, 20)
    try:
        driver.get(served_large)
        total = lambda: shown_total(driver)  # noqa: E731
        wait.until(lambda d: total().endswith(" W"))
        driver.find_element(By.XPATH, "//span[@class='name'][starts-with(., 'logic 500 ')]").click()
        clock = wait.until(lambda d: d.find_element(By.CSS_SELECTOR, "[data-cell='CLOCK_FREQ']"))
        figures = []
        for value in ("420", "430", "440", "450", "460"):
            before = total()
            driver.execute_script("arguments[0].value = arguments[1];"
                                  "arguments[0].dispatchEvent(new Event('input'));", clock, value)
            wait.until(lambda d: total() != before)
            figures.append(float(driver.find_element(By.TAG_NAME, "body").get_attribute("data-last-edit-ms")))
        os.makedirs(ARTEFACTS, exist_ok=True)
        with open(os.path.join(ARTEFACTS, "serve-timings.txt"), "w") as out:
            out.write(f"1,000-block design, edit to new totals on screen (ms): {sorted(figures)}\n")
    finally:
        driver.quit()
