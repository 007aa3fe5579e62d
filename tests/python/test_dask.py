"""The dask example on a local cluster of two worker processes against one process."""
import os
import sys

import numpy as np
import pandas as pd
import pytest

sys.path.insert(0, os.path.join(os.environ["ZV_SOURCE_DIR"], "examples"))
import dask_column  # noqa: E402


@pytest.mark.filterwarnings("ignore::DeprecationWarning")
def test_two_worker_processes_give_what_one_process_gives():
    from dask.distributed import Client, LocalCluster

    with LocalCluster(n_workers=2, threads_per_worker=1, processes=True, dashboard_address=None) as cluster, \
            Client(cluster) as client:
        out = dask_column.run(client, 200_000)
        assert len(client.scheduler_info()["workers"]) == 2
    alone = dask_column.format_partition(dask_column.sample(200_000))
    pd.testing.assert_frame_equal(out, alone)
    assert np.array_equal(out["back"], out["amount"], equal_nan=True)
    assert out["text"].iloc[1].strip().endswith("€")
