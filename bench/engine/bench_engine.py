"""Engine speed targets: one Loop() step with 1,000 running animations under
1 ms; PreserveHandbasket/RestoreHandbasket of 1,000 objects under 10 ms;
SaveScene/LoadWorld of 1,000 objects under 100 ms.

Run: PYTHONPATH=engine/python /usr/bin/python3 bench/engine/bench_engine.py
"""

import tempfile
import time

from vessa import Interpreter
from vessa.clock import ManualClock

COUNT = 1000


def best_ms(action, repeats=5):
    times = []
    for _ in range(repeats):
        start = time.perf_counter()
        action()
        times.append((time.perf_counter() - start) * 1000)
    return min(times)


def world_of(count):
    clock = ManualClock()
    engine = Interpreter(clock=clock)
    with engine.undo.quiet():
        for n in range(count):
            engine.scene.create("model", "Thing%d" % n, engine.scene.root)
    return engine, clock


def bench_loop(engine, clock):
    names = list(engine.scene.namespace)
    code = "\n".join("%s.Move(Forward, 100, Duration=1000)" % n for n in names if n.startswith("Thing"))
    engine.ExecuteCode(code, "<Tool>", "exec")
    engine.Loop()

    def step():
        clock.advance(0.016)
        engine.Loop()
    return best_ms(step, 20)


def main():
    engine, clock = world_of(COUNT)
    folder = tempfile.mkdtemp()
    print("Loop step, %d animations: %.2f ms" % (COUNT, bench_loop(engine, clock)))
    engine.handbasket.restore()
    print("PreserveHandbasket: %.2f ms" % best_ms(engine.handbasket.preserve))
    print("RestoreHandbasket: %.2f ms" % best_ms(engine.handbasket.restore))
    print("SaveScene: %.2f ms" % best_ms(lambda: engine.SaveScene(folder)))
    print("LoadWorld: %.2f ms" % best_ms(lambda: engine.LoadWorld(folder), 3))
    engine.Close()


if __name__ == "__main__":
    main()
