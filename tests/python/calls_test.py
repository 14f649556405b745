"""How calls behave: threads, progress, Ctrl-C, and an interpreter that is free meanwhile."""

import os
import signal
import subprocess
import sys
import threading
import time

import numpy as np
import pytest
import tessary as ts


@pytest.fixture(scope="module")
def large():
    return ts.demo_mesh(400)


def test_results_do_not_depend_on_threads(large):
    one, two = (large.sample(distance="2%", seed=3, threads=n) for n in (1, 2))
    assert one.points.tobytes() == two.points.tobytes()
    with pytest.raises(ts.ArgumentError, match="threads: 1 to 1024 are possible") as caught:
        large.triangulate(threads=0)
    assert caught.value.argument == "threads"


def test_progress_adds_up(large):
    for call in (lambda tell: large.sample(distance="0.5%", progress=tell),
                 lambda tell: ts.demo_mesh(8).triangulate(progress=tell)):
        steps = []
        call(steps.append)
        assert sum(steps) == 100 and min(steps) >= 0


def test_progress_moves_while_a_kernel_works(large):
    steps = []
    large.sample(distance="0.5%", progress=steps.append)
    assert len([step for step in steps if step > 0]) > 3


def test_what_progress_raises_ends_the_call(large):
    with pytest.raises(ZeroDivisionError):
        large.sample(distance="0.1%", progress=lambda percent: 1 / 0)


def interrupted_after(seconds, call):
    """How long after Ctrl-C a call ends."""
    sent = []

    def interrupt():
        time.sleep(seconds)
        sent.append(time.monotonic())
        os.kill(os.getpid(), signal.SIGINT)
    thread = threading.Thread(target=interrupt)
    thread.start()
    with pytest.raises(ts.Cancelled) as caught:
        call()
    took = time.monotonic() - sent[0]
    thread.join()
    assert isinstance(caught.value.__cause__, KeyboardInterrupt) and not isinstance(caught.value, Exception)
    return took


@pytest.mark.parametrize("name, options", [("sample", {"distance": "0.1%"}), ("quads", {"crease_angle": 30})])
def test_ctrl_c_ends_a_call(large, name, options):
    assert interrupted_after(0.1, lambda: getattr(large, name)(**options)) < 1  # 0.25 where nothing else runs


def test_a_handler_that_raises_nothing_lets_the_call_end(large):
    calls = []
    before = signal.signal(signal.SIGALRM, lambda number, frame: calls.append(number))
    try:
        signal.setitimer(signal.ITIMER_REAL, 0.02, 0.02)
        made = large.adjacency()
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, before)
    assert calls and len(made.face_vertex) == large.triangulate().face_count


def test_other_threads_run_meanwhile(large):
    ticks, done = [], threading.Event()

    def tick():
        while not done.wait(0.002):
            ticks.append(1)
    thread = threading.Thread(target=tick)
    thread.start()
    start = time.monotonic()
    large.sample(distance="0.5%")
    took = time.monotonic() - start
    done.set()
    thread.join()
    assert len(ticks) > 5 or took < 0.05


def test_children_of_fork_work_too(large):
    large.sample(distance="1%")  # starts threads, which a child does not have
    child = os.fork()
    if child == 0:
        os._exit(0 if large.triangulate(threads=1).face_count > 0 else 1)
    assert os.waitpid(child, 0)[1] == 0


def test_a_process_may_end_with_work_under_way():
    script = ("import threading, time, tessary as ts; mesh = ts.demo_mesh(256)\n"
              "threading.Thread(target=mesh.sample, kwargs={'distance': '0.05%'}, daemon=True).start()\n"
              "time.sleep(0.1)")
    assert subprocess.run([sys.executable, "-c", script], timeout=60, check=False).returncode == 0


def test_interrupted_solves_change_nothing():
    solver, random = ts.Multicollider(), np.random.default_rng(0)
    for _ in range(1000):
        solver.add_collider(1, random.normal(size=3))
        solver.add_contact(random.normal(size=3))
    solver.prepare_pairs()
    solver.max_iterations, solver.tolerance = 4_000_000, 0
    before = solver.displacements
    assert interrupted_after(0.1, solver.solve) < 1
    assert (solver.displacements == before).all()
