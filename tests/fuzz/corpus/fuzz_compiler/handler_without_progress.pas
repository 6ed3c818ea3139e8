sector S;
object s;
ûûopertyADDT pseries m1;
#AD0;
vastatic s;
ûûopertru