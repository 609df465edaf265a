"""A desk TV for each test. In conftest.py:

    pytest_plugins = ["homeloom.pytest_plugin"]

and then

    @pytest.mark.homeloom(home="homes/cottage.json")
    def test_the_washer_washes(homeloom_tv):
        homeloom_tv.do("washer")
        homeloom_tv.wait_for_state("washer", "Washing*")

The mark takes what homeloom.start takes; without it the TV begins with the apartment. A test fails as well when the
plug-in leaves something behind at the end.
"""

from collections.abc import Iterator

import pytest

from ._client import TV
from ._program import start


def pytest_configure(config: pytest.Config) -> None:
    config.addinivalue_line("markers", "homeloom(home, arguments, program): how the test's desk TV starts")


@pytest.fixture
def homeloom_tv(request: pytest.FixtureRequest) -> Iterator[TV]:
    mark = request.node.get_closest_marker("homeloom")
    with start(**(mark.kwargs if mark else {})) as tv:
        yield tv
