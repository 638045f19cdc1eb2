"""How the benches on the board print a figure beside its yardstick."""

import statistics


def report(name, values, yardstick, unit, limit, middle=statistics.median):
    """One line as the other benches print it, and how far the middle half of the values is spread."""
    value, beside = middle(values), middle(yardstick)
    is_kept = value / beside <= limit
    print(f"{name:<34} {value:9.2f} {unit:<4} beside {beside:9.2f} {unit:<4} ratio {value / beside:5.2f}, "
          f"at most {limit:.2f}  {'kept' if is_kept else 'MISSED'}")
    print(f"{'':<34} {spread(values)} beside {spread(yardstick)}", flush=True)
    return is_kept


def spread(values):
    low, _, high = statistics.quantiles(values, n=4)
    return f"middle half {low:.2f} to {high:.2f}"
