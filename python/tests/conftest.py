import pytest

import veq


@pytest.fixture
def triangle():
    """0 - 1 - 2 - 0, and 3 hanging at 2."""
    return veq.Network([0, 1, 2, 2], [1, 2, 0, 3])
