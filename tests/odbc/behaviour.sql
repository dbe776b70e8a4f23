-- Empty dates are the empty text and come before all others.
insert into KAMPPANJA (Tuote, Loppu) values ('none', NULL) => 1
insert into KAMPPANJA (Tuote, Loppu) values ('before', '2024-08-31') => 1
insert into KAMPPANJA (Tuote, Loppu) values ('day', '20240901') => 1
insert into KAMPPANJA (Tuote, Loppu) values ('after', '2024-09-02') => 1
select Tuote from KAMPPANJA where loppu='' or loppu>='20240901' order by Tuote => after / day / none
select Tuote from KAMPPANJA where kamppanja.loppu = '' or (kamppanja.Loppu>='2024-09-02') order by Tuote => after / none
select Tuote from KAMPPANJA where loppu < '2024-09-01' order by Tuote => before / none
select Tuote from KAMPPANJA where loppu <= '20240831' order by Tuote => before / none
select Tuote, Loppu from KAMPPANJA where loppu <> '' order by Tuote => after|2024-09-02 / before|2024-08-31 / day|2024-09-01
select Tuote from KAMPPANJA where loppu = '20240901' => day
update KAMPPANJA set Loppu='' where Tuote='day' => 1
update KAMPPANJA set Alku='20241231' where Tuote='after' => 1
select Tuote, Loppu, Alku from KAMPPANJA where Tuote < 'n' order by Tuote => after|2024-09-02|2024-12-31 / before|2024-08-31| / day||

-- Halves of the double are rounded away from zero. 0.125 * 100 is a half, 1.005 * 100 is
-- 100.49999999999999, 7 * 1.255 is 8.785.
insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1, Hinta2, Hinta3, Hinta4, Hinta5) values (1, 'A', 2.5, -2.5, 0.125, 7, 1.005) => 1
select round(hinta1), ROUND( (hinta2) ), round( ( hinta3),2), round(hinta3 * -1, 2), round(hinta5,2) from myymalahinnat => 3|-3|0.13|-0.13|1
select FLOOR((( hinta4)* 20) + 0.9999) / 20, floor(hinta1)/4, hinta4/1.255, floor(hinta2) from myymalahinnat => 7|0.5|5.577689243027889|-3
update myymalahinnat set hinta4 = round( ( hinta4 * 1.255),2) => 1
select hinta4 from myymalahinnat => 8.79

-- Rows affected are those of the condition, also where nothing changes. Errors keep the connection.
insert into ALVKANTA (luokka, Prosentti) values (1, 24) => 1
insert into ALVKANTA (luokka, Prosentti) values (2, 24) => 1
insert into ALVKANTA (luokka, Prosentti) values (3, 24) => 1
select top 2 luokka from ALVKANTA order by luokka desc; => 3 / 2
update ALVKANTA set Prosentti=25.5 where luokka>=2 => 2
update ALVKANTA set Prosentti=25.5 where luokka>=2 => 2
update ALVKANTA set Prosentti=1 where luokka=9 => 0
delete from ALVKANTA where luokka=9 => 0
delete from ALVKANTA where luokka<3 => 2
update EIOLE set a=1 => no such table
update ALVKANTA set eiole=1 => no such field
update ALVKANTA set Prosentti=round( (1)*20)/20) => syntax
select luokka, Prosentti from ALVKANTA => 3|25.5
select xf$name from x$file where xf$name='PUUTTUU' => 
