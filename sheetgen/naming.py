"""How table names become C++ names."""


def camel(name: str) -> str:
    """CLOCK_FREQ -> ClockFreq, A1_SIG_RATE -> A1SigRate; a family pattern drops its placeholder."""
    parts = [p for p in name.replace("{}", "").split("_") if p]
    return "".join(p[0].upper() + p[1:].lower() for p in parts)
